#ifndef QRM_TESTS_TREECOMPARISON_H
#define QRM_TESTS_TREECOMPARISON_H

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h"

/// Compares trees of Xerces in everything that they tell their callers, and in the flags that they keep to themselves.
namespace tree_comparison {

inline std::u16string textOf(const XMLCh* text)
{
    return text == nullptr ? std::u16string(u"(null)") : u"'" + std::u16string(text);
}

inline std::string printable(const std::u16string& text)
{
    return I18NString(text.c_str()).toUtf8();
}

/// Finds the first place where two trees differ.
class Comparison
{
public:
    /// What differs; empty where nothing does.
    std::string difference;

    void compareDocuments(const xercesc::DOMDocument* a, const xercesc::DOMDocument* b)
    {
        expect(a->getXmlVersion(), b->getXmlVersion(), "XML version");
        expect(a->getXmlEncoding(), b->getXmlEncoding(), "declared encoding");
        expect(a->getInputEncoding(), b->getInputEncoding(), "input encoding");
        expect(a->getDocumentURI(), b->getDocumentURI(), "document URI");
        expect(a->getXmlStandalone() == b->getXmlStandalone(), "standalone");
        expect(a->getStrictErrorChecking() == b->getStrictErrorChecking(), "error checking");
        compare(a, b);
        for (const auto& [attribute, other] : m_ids) {
            const xercesc::DOMElement* const found = a->getElementById(attribute->getValue());
            expect(counterpart(found) == b->getElementById(other->getValue()), "element of an id");
        }
    }

    /// The nodes are in one document, or each in its own.
    void compareTrees(const xercesc::DOMNode* a, const xercesc::DOMNode* b)
    {
        m_counterparts[a->getOwnerDocument()] = b->getOwnerDocument();
        compare(a, b);
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

    const xercesc::DOMNode* counterpart(const xercesc::DOMNode* a) const
    {
        const auto found = m_counterparts.find(a);
        return found == m_counterparts.end() ? nullptr : found->second;
    }

    void expectCounterpart(const xercesc::DOMNode* a, const xercesc::DOMNode* b, const char* what)
    {
        expect(a == nullptr ? b == nullptr : counterpart(a) == b, what);
    }

    void compareTypes(const xercesc::DOMTypeInfo* a, const xercesc::DOMTypeInfo* b)
    {
        expect((a == nullptr) == (b == nullptr), "type information");
        if (a != nullptr && b != nullptr) {
            expect(a->getTypeName(), b->getTypeName(), "type name");
            expect(a->getTypeNamespace(), b->getTypeNamespace(), "type namespace");
        }
    }

    void compare(const xercesc::DOMNode* a, const xercesc::DOMNode* b)
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
        expect(xercesc::castToNodeImpl(a)->flags == xercesc::castToNodeImpl(b)->flags, "flags");
        expect(a->getOwnerDocument() == nullptr ? b->getOwnerDocument() == nullptr
                                                : counterpart(a->getOwnerDocument()) == b->getOwnerDocument(),
               "owner document");
        if (difference.empty()) {
            compareKinds(a, b);
            compareChildren(a, b);
        }
        m_place = before;
    }

    void compareKinds(const xercesc::DOMNode* a, const xercesc::DOMNode* b)
    {
        switch (a->getNodeType()) {
        case xercesc::DOMNode::ELEMENT_NODE:
            compareTypes(static_cast<const xercesc::DOMElement*>(a)->getSchemaTypeInfo(),
                         static_cast<const xercesc::DOMElement*>(b)->getSchemaTypeInfo());
            compareMaps(a->getAttributes(), b->getAttributes());
            break;
        case xercesc::DOMNode::ATTRIBUTE_NODE: {
            const auto* const attribute = static_cast<const xercesc::DOMAttr*>(a);
            const auto* const other = static_cast<const xercesc::DOMAttr*>(b);
            compareTypes(attribute->getSchemaTypeInfo(), other->getSchemaTypeInfo());
            expect(attribute->getSpecified() == other->getSpecified(), "specified");
            expectCounterpart(attribute->getOwnerElement(), other->getOwnerElement(), "owner element");
            if (attribute->isId()) {
                m_ids.emplace_back(attribute, other);
            }
            break;
        }
        case xercesc::DOMNode::TEXT_NODE:
            expect(static_cast<const xercesc::DOMText*>(a)->isIgnorableWhitespace()
                       == static_cast<const xercesc::DOMText*>(b)->isIgnorableWhitespace(),
                   "ignorable white space");
            break;
        case xercesc::DOMNode::DOCUMENT_TYPE_NODE:
            compareMaps(static_cast<const xercesc::DOMDocumentType*>(a)->getEntities(),
                        static_cast<const xercesc::DOMDocumentType*>(b)->getEntities());
            break;
        default: break;
        }
    }

    void compareMaps(const xercesc::DOMNamedNodeMap* a, const xercesc::DOMNamedNodeMap* b)
    {
        expect(a->getLength() == b->getLength(), "length of a map");
        for (XMLSize_t i = 0; i < a->getLength() && difference.empty(); ++i) {
            compare(a->item(i), b->item(i));
        }
    }

    void compareChildren(const xercesc::DOMNode* a, const xercesc::DOMNode* b)
    {
        const xercesc::DOMNode* child = a->getFirstChild();
        const xercesc::DOMNode* other = b->getFirstChild();
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
    std::unordered_map<const xercesc::DOMNode*, const xercesc::DOMNode*> m_counterparts;
    std::map<const XMLCh*, const XMLCh*> m_pooled;
    std::vector<std::pair<const xercesc::DOMAttr*, const xercesc::DOMAttr*>> m_ids;
};

class ThrowingHandler : public xercesc::HandlerBase
{
public:
    void error(const xercesc::SAXParseException& exception) override
    {
        throw xercesc::SAXParseException(exception);
    }
    void fatalError(const xercesc::SAXParseException& exception) override
    {
        throw xercesc::SAXParseException(exception);
    }
};

inline std::string differenceOf(const xercesc::DOMDocument* a, const xercesc::DOMDocument* b)
{
    Comparison comparison;
    comparison.compareDocuments(a, b);
    return comparison.difference;
}

inline std::string differenceOfTrees(const xercesc::DOMNode* a, const xercesc::DOMNode* b)
{
    Comparison comparison;
    comparison.compareTrees(a, b);
    return comparison.difference;
}

struct Settings
{
    bool validates = false;
    bool loadsExternal = true;
    std::string schema; // a file; empty for none
};

/// Where the tree that the parser makes of the text differs from that of Xerces' own parser; empty where it does not.
inline std::string differenceOf(const std::string& text, const Settings& settings)
{
    ThrowingHandler handler;
    xercesc::XercesDOMParser raw;
    raw.setErrorHandler(&handler);
    raw.setDoNamespaces(true);
    raw.setIncludeIgnorableWhitespace(true);
    raw.setLoadExternalDTD(settings.loadsExternal);
    raw.setValidationScheme(settings.validates ? xercesc::XercesDOMParser::Val_Always
                                               : xercesc::XercesDOMParser::Val_Never);
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
        raw.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()), text.size(), ""));
    } catch (const xercesc::SAXParseException&) {
        parsed = false;
    } catch (const xercesc::DOMException&) {
        parsed = false; // such as for a version of XML that there is not
    }
    QRMIDOM_Document document;
    if ((parser.parse(text.data(), static_cast<int>(text.size()), document) == 1) != parsed) {
        return "only one parser takes it";
    }
    if (document.isNull() || raw.getDocument() == nullptr) {
        return document.isNull() == (raw.getDocument() == nullptr) ? "" : "only one parser gives a document";
    }
    return differenceOf(raw.getDocument(), document);
}

} // namespace tree_comparison

#endif
