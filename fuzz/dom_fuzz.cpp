// What any bytes are parsed to is written and parsed again: the second tree is the first one, but for what the writer
// does by contract. Copies of it are equal to it, and stay so in normal form.

#include <sstream>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"
#include "fuzz/Fuzz.h"
#include "tests/support/TreeComparison.h"

namespace {

using xercesc::DOMNode;

std::string escaped(const I18NString& text)
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(stream, text, "UTF-8");
    return stream.str();
}

/// As a parser reads it back: line ends are line feeds, in attributes all white space is blanks.
std::string readBack(const std::string& text, bool isAttribute)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char unit = text[i];
        if (unit == '\r') {
            if (i + 1 < text.size() && text[i + 1] == '\n') {
                continue;
            }
            unit = '\n';
        }
        result += isAttribute && (unit == '\n' || unit == '\t') ? ' ' : unit;
    }
    return result;
}

/// The tree in words. The first one is told as it is to come back.
class Telling
{
public:
    explicit Telling(bool isFirst) : m_isFirst(isFirst) {}

    std::string of(const DOMNode* root)
    {
        const DOMNode* node = root;
        while (node != nullptr) {
            open(node);
            const DOMNode* next = node->getFirstChild();
            while (next == nullptr && node != root) {
                close(node);
                next = node->getNextSibling();
                node = next == nullptr ? node->getParentNode() : node;
            }
            if (node == root && next == nullptr) {
                close(node);
            }
            node = next;
        }
        endText();
        return m_text;
    }

private:
    static std::string bytes(const XMLCh* text) { return I18NString(text).toUtf8(); }

    /// Comments and instructions come back escaped.
    std::string contents(const XMLCh* text) const
    {
        return m_isFirst ? readBack(escaped(I18NString(text)), false) : bytes(text);
    }

    void endText()
    {
        if (!m_run.empty()) {
            m_text += "'" + (m_isFirst ? readBack(m_run, false) : m_run) + "\n";
            m_run.clear();
        }
    }

    void open(const DOMNode* node)
    {
        if (node->getNodeType() == DOMNode::TEXT_NODE) {
            m_run += bytes(node->getNodeValue());
            return;
        }
        endText();
        switch (node->getNodeType()) {
        case DOMNode::ELEMENT_NODE: {
            m_text += "<" + bytes(node->getNodeName()) + " " + bytes(node->getNamespaceURI()) + "\n";
            const xercesc::DOMNamedNodeMap* const attributes = node->getAttributes();
            for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
                const auto* const attribute = static_cast<const xercesc::DOMAttr*>(attributes->item(i));
                if (attribute->getSpecified()) {
                    const std::string value = bytes(attribute->getValue());
                    m_text += "@" + bytes(attribute->getName()) + "="
                              + (m_isFirst ? readBack(value, true) : value) + "\n";
                }
            }
            break;
        }
        case DOMNode::CDATA_SECTION_NODE:
            m_text +=
                "[" + (m_isFirst ? readBack(bytes(node->getNodeValue()), false) : bytes(node->getNodeValue()))
                + "\n";
            break;
        case DOMNode::COMMENT_NODE: m_text += "!" + contents(node->getNodeValue()) + "\n"; break;
        case DOMNode::PROCESSING_INSTRUCTION_NODE:
            m_text += "?" + bytes(node->getNodeName()) + " " + contents(node->getNodeValue()) + "\n";
            break;
        default: break;
        }
    }

    void close(const DOMNode* node)
    {
        if (node->getNodeType() == DOMNode::ELEMENT_NODE) {
            endText();
            m_text += ">\n";
        }
    }

    bool m_isFirst;
    std::string m_text;
    std::string m_run; // of text nodes
};

/// Takes out what does not come back: the document type, whose internal subset is written escaped, and with it
/// references to entities.
/// @return whether there is a document element left
bool prepare(QRMIDOM_Document& document)
{
    QRMIDOM_Node doctype = document.getDoctype();
    if (!doctype.isNull()) {
        document.removeChild(doctype);
    }
    QRMIDOM_Node node = document;
    while (!node.isNull()) {
        QRMIDOM_Node next = node.getNodeType() == 5 ? QRMIDOM_Node() : node.getFirstChild();
        QRMIDOM_Node up = node;
        while (next.isNull() && !up.isNull()) {
            next = up.getNextSibling();
            up = next.isNull() ? up.getParentNode() : up;
        }
        if (node.getNodeType() == 5) {
            node.getParentNode().removeChild(node);
        }
        node = next;
    }
    return !document.getDocumentElement().isNull();
}

QRMIDOM_Document parsed(const std::string& text, QRMIDOM_Parser& parser)
{
    QRMIDOM_Document document;
    const bool isDone = parser.parse(text.data(), static_cast<int>(text.size()), document) == 1;
    return isDone ? document : QRMIDOM_Document();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const unsigned choice = input.choice();
    QRMIDOM_Parser parser;
    parser.setRefuseExternal(1);
    parser.setEntityExpansionLimit(1000);
    parser.setDirectLinking((choice & 1) == 0 ? 1 : 0);
    QRMIDOM_Document document = parsed(input.rest(), parser);
    if (document.isNull()) {
        return 0;
    }
    const DOMNode* const root = document.getDocumentElement();
    const DOMNode* const clone = document.getDocumentElement().cloneNode(1);
    fuzz::require(Telling(false).of(root) == Telling(false).of(clone), "the clone differs");

    if (!prepare(document)) {
        return 0;
    }
    std::ostringstream stream;
    QRMIDOM_Helper::write(document, stream, "UTF-8");
    const QRMIDOM_Document again = parsed(stream.str(), parser);
    fuzz::require(!again.isNull(),
                  "what was written does not parse: " + parser.errorString().toUtf8() + "\n" + stream.str());
    const DOMNode* const second = again;
    const DOMNode* const first = document;
    const std::string expected = Telling(true).of(first);
    const std::string actual = Telling(false).of(second);
    fuzz::require(expected == actual, expected + "---\n" + actual);

    const QRMIDOM_Document copy = document.cloneNode(1);
    document = document.cloneNode(1); // both with attributes that count as specified
    document.normalizeDocument();
    xercesc::DOMDocument* const raw = copy;
    raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMCDATASections, false);
    raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMComments, false);
    raw->getDOMConfig()->setParameter(xercesc::XMLUni::fgDOMNamespaces, false);
    raw->normalizeDocument();
    const xercesc::DOMDocument* const normal = document;
    const xercesc::DOMDocument* const other = raw;
    fuzz::require(Telling(false).of(normal) == Telling(false).of(other), "the normal form differs");
    return 0;
}
