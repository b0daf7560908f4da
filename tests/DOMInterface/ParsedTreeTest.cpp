// The parser links nodes itself. Whatever a tree tells its callers, and what it keeps to itself, is as Xerces' own parser
// makes it.

#include <fstream>
#include <map>
#include <unordered_map>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include "tests/support/RealDocuments.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"

namespace {

using namespace xercesc;

std::u16string textOf(const XMLCh* text)
{
    return text == nullptr ? std::u16string(u"(null)") : u"'" + std::u16string(text);
}

std::string printable(const std::u16string& text)
{
    return I18NString(text.c_str()).toUtf8();
}

/// Finds the first place where two trees differ.
class Comparison
{
public:
    /// What differs; empty where nothing does.
    std::string difference;

    void compareDocuments(const DOMDocument* a, const DOMDocument* b)
    {
        expect(a->getXmlVersion(), b->getXmlVersion(), "XML version");
        expect(a->getXmlEncoding(), b->getXmlEncoding(), "declared encoding");
        expect(a->getInputEncoding(), b->getInputEncoding(), "input encoding");
        expect(a->getDocumentURI(), b->getDocumentURI(), "document URI");
        expect(a->getXmlStandalone() == b->getXmlStandalone(), "standalone");
        expect(a->getStrictErrorChecking() == b->getStrictErrorChecking(), "error checking");
        compare(a, b);
        for (const auto& [attribute, other] : m_ids) {
            const DOMElement* const found = a->getElementById(attribute->getValue());
            expect(counterpart(found) == b->getElementById(other->getValue()), "element of an id");
        }
    }

private:
    void fail(const std::string& what)
    {
        if (difference.empty()) {
            difference = m_place + ": " + what;
        }
    }

    void expect(bool isEqual, const char* what)
    {
        if (!isEqual) {
            fail(what);
        }
    }

    void expect(const XMLCh* a, const XMLCh* b, const char* what)
    {
        if (textOf(a) != textOf(b)) {
            fail(what + (": " + printable(textOf(a))) + " and " + printable(textOf(b)));
        }
    }

    /// Strings that are one in one tree are one in the other.
    void expectPooled(const XMLCh* a, const XMLCh* b, const char* what)
    {
        expect(a, b, what);
        expect(m_pooled.emplace(a, b).first->second == b, "the same string in several places");
    }

    const DOMNode* counterpart(const DOMNode* a) const
    {
        const auto found = m_counterparts.find(a);
        return found == m_counterparts.end() ? nullptr : found->second;
    }

    void expectCounterpart(const DOMNode* a, const DOMNode* b, const char* what)
    {
        expect(a == nullptr ? b == nullptr : counterpart(a) == b, what);
    }

    void compareTypes(const DOMTypeInfo* a, const DOMTypeInfo* b)
    {
        expect((a == nullptr) == (b == nullptr), "type information");
        if (a != nullptr && b != nullptr) {
            expect(a->getTypeName(), b->getTypeName(), "type name");
            expect(a->getTypeNamespace(), b->getTypeNamespace(), "type namespace");
        }
    }

    void compare(const DOMNode* a, const DOMNode* b)
    {
        m_counterparts[a] = b;
        const std::string before = m_place;
        m_place += "/" + printable(textOf(a->getNodeName()).substr(1));
        expect(a->getNodeType() == b->getNodeType(), "type");
        expectPooled(a->getNodeName(), b->getNodeName(), "name");
        expectPooled(a->getNamespaceURI(), b->getNamespaceURI(), "namespace");
        expectPooled(a->getPrefix(), b->getPrefix(), "prefix");
        expectPooled(a->getLocalName(), b->getLocalName(), "local name");
        expect(a->getNodeValue(), b->getNodeValue(), "value");
        expect(castToNodeImpl(a)->flags == castToNodeImpl(b)->flags, "flags");
        expect(a->getOwnerDocument() == nullptr ? b->getOwnerDocument() == nullptr
                                                : counterpart(a->getOwnerDocument()) == b->getOwnerDocument(),
               "owner document");
        if (difference.empty()) {
            compareKinds(a, b);
            compareChildren(a, b);
        }
        m_place = before;
    }

    void compareKinds(const DOMNode* a, const DOMNode* b)
    {
        switch (a->getNodeType()) {
        case DOMNode::ELEMENT_NODE:
            compareTypes(static_cast<const DOMElement*>(a)->getSchemaTypeInfo(),
                         static_cast<const DOMElement*>(b)->getSchemaTypeInfo());
            compareMaps(a->getAttributes(), b->getAttributes());
            break;
        case DOMNode::ATTRIBUTE_NODE: {
            const auto* const attribute = static_cast<const DOMAttr*>(a);
            const auto* const other = static_cast<const DOMAttr*>(b);
            compareTypes(attribute->getSchemaTypeInfo(), other->getSchemaTypeInfo());
            expect(attribute->getSpecified() == other->getSpecified(), "specified");
            expectCounterpart(attribute->getOwnerElement(), other->getOwnerElement(), "owner element");
            if (attribute->isId()) {
                m_ids.emplace_back(attribute, other);
            }
            break;
        }
        case DOMNode::TEXT_NODE:
            expect(static_cast<const DOMText*>(a)->isIgnorableWhitespace()
                       == static_cast<const DOMText*>(b)->isIgnorableWhitespace(),
                   "ignorable white space");
            break;
        case DOMNode::DOCUMENT_TYPE_NODE:
            compareMaps(static_cast<const DOMDocumentType*>(a)->getEntities(),
                        static_cast<const DOMDocumentType*>(b)->getEntities());
            break;
        default: break;
        }
    }

    void compareMaps(const DOMNamedNodeMap* a, const DOMNamedNodeMap* b)
    {
        expect(a->getLength() == b->getLength(), "length of a map");
        for (XMLSize_t i = 0; i < a->getLength() && difference.empty(); ++i) {
            compare(a->item(i), b->item(i));
        }
    }

    void compareChildren(const DOMNode* a, const DOMNode* b)
    {
        const DOMNode* child = a->getFirstChild();
        const DOMNode* other = b->getFirstChild();
        while (child != nullptr && other != nullptr && difference.empty()) {
            compare(child, other);
            expectCounterpart(child->getParentNode(), other->getParentNode(), "parent");
            expectCounterpart(child->getPreviousSibling(), other->getPreviousSibling(), "previous sibling");
            child = child->getNextSibling();
            other = other->getNextSibling();
        }
        expect((child == nullptr) == (other == nullptr), "number of children");
        if (difference.empty()) {
            expectCounterpart(a->getLastChild(), b->getLastChild(), "last child");
        }
    }

    std::string m_place;
    std::unordered_map<const DOMNode*, const DOMNode*> m_counterparts;
    std::map<const XMLCh*, const XMLCh*> m_pooled;
    std::vector<std::pair<const DOMAttr*, const DOMAttr*>> m_ids;
};

class ThrowingHandler : public HandlerBase
{
public:
    void error(const SAXParseException& exception) override { throw SAXParseException(exception); }
    void fatalError(const SAXParseException& exception) override { throw SAXParseException(exception); }
};

struct Settings
{
    bool validates = false;
    bool loadsExternal = true;
    std::string schema; // a file; empty for none
};

std::string differenceOf(const std::string& text, const Settings& settings)
{
    ThrowingHandler handler;
    XercesDOMParser raw;
    raw.setErrorHandler(&handler);
    raw.setDoNamespaces(true);
    raw.setIncludeIgnorableWhitespace(true);
    raw.setLoadExternalDTD(settings.loadsExternal);
    raw.setValidationScheme(settings.validates ? XercesDOMParser::Val_Always : XercesDOMParser::Val_Never);
    QRMIDOM_Parser parser;
    parser.setLoadExternalDTD(settings.loadsExternal ? 1 : 0);
    parser.setDoValidation(settings.validates ? 1 : 0);
    if (!settings.schema.empty()) {
        raw.setDoSchema(true);
        raw.setExternalNoNamespaceSchemaLocation(settings.schema.c_str());
        parser.setDoSchema(1);
        parser.setExternalNoNamespaceSchemaLocation(settings.schema.c_str());
    }
    bool parsed = true;
    try {
        raw.parse(MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(), ""));
    } catch (const SAXParseException&) {
        parsed = false;
    }
    QRMIDOM_Document document;
    if ((parser.parse(text.data(), static_cast<int>(text.size()), document) == 1) != parsed) {
        return "only one parser takes it";
    }
    if (document.isNull() || raw.getDocument() == nullptr) {
        return document.isNull() == (raw.getDocument() == nullptr) ? "" : "only one parser gives a document";
    }
    Comparison comparison;
    comparison.compareDocuments(raw.getDocument(), document);
    return comparison.difference;
}

const std::string kEverything =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!--before--><?p before?>"
    "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT item (#PCDATA|b)*><!ATTLIST item id ID #REQUIRED kind CDATA 'd' "
    "n NMTOKEN #IMPLIED><!ATTLIST b i ID #IMPLIED t CDATA #IMPLIED><!ENTITY e 'x<b t=\"1\">y</b>z'>"
    "<!ENTITY inner '<b>&e;</b>'><!NOTATION n SYSTEM 's'><!ENTITY u SYSTEM 's' NDATA n>]>"
    "<r xmlns='urn:d' xmlns:p='urn:p' p:a='1' b='2'>\n text <item id='one'>a</item><item id='two' kind='k'/>"
    "<b i='three' t='&lt;&#65;&e2;'/>&e;<p:c p:x='1' x='2' xml:lang='en'><d xmlns=''/><p:c/></p:c>"
    "<![CDATA[cdata]]>more&amp;text<!--c--><?pi data?>&inner;tail<b/><b "
    "i='four'></b>\xC3\xA9</r><!--after-->";

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    text.replace(text.find(what), what.size(), by);
    return text;
}

TEST(ParsedTree, IsThatOfXercesForEveryKindOfContent)
{
    const std::string text = replaced(kEverything, "&e2;", "&quot;");
    EXPECT_EQ(differenceOf(text, {}), "");
    QRMIDOM_Document document = documentOf(text);
    EXPECT_EQ(document.getElementById("one").getTagName(), "item");
    EXPECT_EQ(document.getElementById("four").getTagName(), "b");
}

TEST(ParsedTree, IsThatOfXercesWhereverAParseEnds)
{
    const std::string text = replaced(kEverything, "&e2;", "");
    for (std::size_t length = 1; length <= text.size(); ++length) {
        ASSERT_EQ(differenceOf(text.substr(0, length), {}), "") << text.substr(0, length);
    }
    EXPECT_EQ(differenceOf(kEverything, {}), "") << "an entity that is not declared";
}

TEST(ParsedTree, IsThatOfXercesWhenValidating)
{
    const std::string dtd = "<!DOCTYPE r [<!ELEMENT r (a*)><!ELEMENT a (#PCDATA)><!ATTLIST a i ID #IMPLIED "
                            "d CDATA 'default' f CDATA #FIXED 'fixed' k (x|y) 'x'>]>";
    Settings settings;
    settings.validates = true;
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a i='one'>t</a>\n <a d='given'/>  <a/>\n</r>", settings), "");
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a i='one'>t</a>\n <a i='one'/>  <a/>\n</r>", settings), "");
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a>t</a>\n <b/></r>", settings), "");
    EXPECT_EQ(differenceOf("<a><b/></a>", settings), "");
}

TEST(ParsedTree, IsThatOfXercesWithASchema)
{
    const TemporaryFile schema(
        "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'><s:element name='r'><s:complexType><s:sequence>"
        "<s:element name='n' type='s:int' maxOccurs='unbounded' default='7'/></s:sequence>"
        "<s:attribute name='k' type='s:ID'/><s:attribute name='d' default='v'/></s:complexType></s:element>"
        "</s:schema>");
    for (const bool validates : {false, true}) {
        Settings settings;
        settings.validates = validates;
        settings.schema = schema.name();
        EXPECT_EQ(differenceOf("<r k='id'> <n> 1 </n>\n<n/><n>3</n> </r>", settings), "") << validates;
        EXPECT_EQ(differenceOf("<r><n>x</n></r>", settings), "") << validates;
    }
}

TEST(ParsedTree, IsThatOfXercesForTextOfManyPieces)
{
    std::string text = "<r>";
    for (int i = 0; i < 2000; ++i) {
        text += std::string(static_cast<std::size_t>(i), 'x') + "&amp;" + (i % 7 == 0 ? "<b/>" : "");
    }
    EXPECT_EQ(differenceOf(text + "</r>", {}), "");
}

TEST(ParsedTree, IsThatOfXercesForManyAttributes)
{
    std::string text = "<r><a";
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string((i * 7919) % 1000);
        text += " n" + number + "='" + number + "'";
    }
    EXPECT_EQ(differenceOf(text + " xmlns:p='u' p:n1='' xmlns='d'/></r>", {}), "");
}

TEST(ParsedTree, CanBeLeftToXerces)
{
    QRMIDOM_Parser parser;
    parser.setDirectLinking(0);
    QRMIDOM_Document document;
    const std::string text = "<r><a n='1'>x</a>y<b/></r>";
    EXPECT_EQ(parser.parse(text.data(), static_cast<int>(text.size()), document), 1);
    EXPECT_EQ(written(document.getDocumentElement()), "<r><a n=\"1\">x</a>y<b/></r>");
    const QRMIDOM_Document linked = documentOf(text);
    Comparison comparison;
    comparison.compareDocuments(document, linked);
    EXPECT_EQ(comparison.difference, "");
}

TEST(ParsedTree, CanBeChangedAsAnyOther)
{
    QRMIDOM_Document document = documentOf("<r>a<b>c</b>d<e/><e/></r>");
    QRMIDOM_Element root = document.getDocumentElement();
    root.insertBefore(root.getLastChild(), root.getFirstChild());
    root.removeChild(root.getFirstChild().getNextSibling());
    root.appendChild(root.getFirstChild());
    EXPECT_EQ(written(root), "<r><b>c</b>d<e/><e/></r>");
    root.removeChild(root.getLastChild());
    root.getFirstChild().removeChild(root.getFirstChild().getFirstChild());
    root.replaceChild(document.createTextNode("f"), root.getLastChild());
    EXPECT_EQ(written(root), "<r><b/>df</r>");
    root.normalize();
    EXPECT_EQ(root.getLastChild().getNodeValue(), "df");
}

class RealTree : public testing::TestWithParam<real_documents::Package>
{
};

TEST_P(RealTree, IsThatOfXerces)
{
    const auto documents = real_documents::of(GetParam());
    EXPECT_GE(documents.size(), GetParam().atLeast) << "is the package installed?";
    for (const auto& path : documents) {
        std::ifstream stream(path, std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        Settings settings;
        settings.loadsExternal = false;
        if (!text.empty()) { // which is refused before it comes to Xerces
            ASSERT_EQ(differenceOf(text, settings), "") << path;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Debian, RealTree, testing::ValuesIn(real_documents::packages()),
                         [](const auto& package) {
                             std::string name = package.param.name;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

} // namespace
