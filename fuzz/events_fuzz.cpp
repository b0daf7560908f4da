// The events of any bytes are those that their tree holds, and failures are told alike.

#include <algorithm>
#include <vector>

#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"
#include "fuzz/Fuzz.h"
#include "tests/support/TreeComparison.h"

namespace {

using xercesc::DOMNode;

/// Events as lines, text in one piece. Attributes and declarations of namespaces are sorted, since a tree has them so.
/// What comes before the first element is left out: comments in a DTD are events, but no nodes.
class Lines
{
public:
    std::vector<std::string> lines;

    void declare(const std::string& prefix, const std::string& uri)
    {
        m_declared.push_back("+" + prefix + "=" + uri);
    }
    void start(const std::string& name, std::vector<std::string> attributes)
    {
        m_hasBegun = true;
        std::sort(m_declared.begin(), m_declared.end());
        std::sort(attributes.begin(), attributes.end());
        lines.insert(lines.end(), m_declared.begin(), m_declared.end());
        m_declared.clear();
        lines.push_back("<" + name);
        lines.insert(lines.end(), attributes.begin(), attributes.end());
    }
    void end(const std::string& name) { lines.push_back(">" + name); }
    void text(const std::string& text)
    {
        if (text.empty()) {
            return;
        }
        if (lines.empty() || lines.back()[0] != '\'') {
            lines.emplace_back("'");
        }
        lines.back() += text;
    }
    void other(const std::string& line)
    {
        if (m_hasBegun) {
            lines.push_back(line);
        }
    }

private:
    bool m_hasBegun = false;
    std::vector<std::string> m_declared;
};

class Events : public QRMISAX_Parser
{
public:
    using QRMISAX_Parser::parse;
    Lines lines;

    void startElement(const char* name, const char** atts) override
    {
        std::vector<std::string> attributes;
        for (; *atts != nullptr; atts += 2) {
            attributes.push_back("@" + std::string(atts[0]) + "=" + atts[1]);
        }
        lines.start(name, attributes);
    }
    void endElement(const char* name) override { lines.end(name); }
    void characterData(const char* s, int len) override
    {
        lines.text(std::string(s, static_cast<std::size_t>(len)));
    }
    void comment(const char* data) override { lines.other("!" + std::string(data)); }
    void processingInstruction(const char* target, const char* data) override
    {
        lines.other("?" + std::string(target) + " " + data);
    }
    void startNamespaceDecl(const char* prefix, const char* uri) override { lines.declare(prefix, uri); }
};

std::string bytes(const XMLCh* text)
{
    // Lone surrogates cannot come out of a parse.
    return I18NString(text).toUtf8();
}

std::string named(const XMLCh* uri, const XMLCh* name)
{
    return uri == nullptr || *uri == 0 ? bytes(name) : bytes(uri) + '\1' + bytes(name);
}

void tellElement(const DOMNode* node, Lines& lines)
{
    std::vector<std::string> attributes;
    const xercesc::DOMNamedNodeMap* const map = node->getAttributes();
    for (XMLSize_t i = 0; i < map->getLength(); ++i) {
        const DOMNode* const attribute = map->item(i);
        const std::string name = bytes(attribute->getNodeName());
        if (name == "xmlns" || name.compare(0, 6, "xmlns:") == 0) {
            lines.declare(name == "xmlns" ? "" : name.substr(6), bytes(attribute->getNodeValue()));
        } else {
            attributes.push_back("@" + named(attribute->getNamespaceURI(), attribute->getNodeName()) + "="
                                 + bytes(attribute->getNodeValue()));
        }
    }
    lines.start(named(node->getNamespaceURI(), node->getLocalName()), attributes);
}

void tell(const DOMNode* root, Lines& lines)
{
    const DOMNode* node = root;
    while (node != nullptr) {
        switch (node->getNodeType()) {
        case DOMNode::ELEMENT_NODE: tellElement(node, lines); break;
        case DOMNode::TEXT_NODE:
        case DOMNode::CDATA_SECTION_NODE: lines.text(bytes(node->getNodeValue())); break;
        case DOMNode::COMMENT_NODE: lines.other("!" + bytes(node->getNodeValue())); break;
        case DOMNode::PROCESSING_INSTRUCTION_NODE:
            lines.other("?" + bytes(node->getNodeName()) + " " + bytes(node->getNodeValue()));
            break;
        default: break;
        }
        const DOMNode* next = node->getFirstChild();
        while (next == nullptr && node != nullptr) {
            if (node->getNodeType() == DOMNode::ELEMENT_NODE) {
                lines.end(named(node->getNamespaceURI(), node->getLocalName()));
            }
            next = node->getNextSibling();
            node = next == nullptr ? node->getParentNode() : node;
        }
        node = next;
    }
}

std::string errorOf(const QRMISAX_Parser& parser)
{
    return parser.errorString() != nullptr ? parser.errorString() : "";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const unsigned choice = input.choice();
    const std::string text = input.rest();
    if (text.empty() || text[0] == 0) {
        return 0; // the tree parser refuses it, the event parser gives the error of Xerces
    }
    const unsigned depth = (choice & 2) != 0 ? 3 : 0;

    Events events;
    events.setFeature(QRMISAX_Parser::FEATURE_SCHEMA, 0);
    events.setRefuseExternal(1);
    events.setEntityExpansionLimit(1000);
    events.setDepthLimit(depth);
    const int result = events.parse(text.data(), static_cast<int>(text.size()));

    QRMIDOM_Parser parser;
    parser.setRefuseExternal(1);
    parser.setEntityExpansionLimit(1000);
    parser.setDepthLimit(depth);
    QRMIDOM_Document document;
    const int other = parser.parse(text.data(), static_cast<int>(text.size()), document);
    if (other != 1 && parser.errorString().empty()) {
        return 0; // of the DOM, such as for a version of XML that there is not; events know nothing of it
    }
    fuzz::require(other == result,
                  "one parser takes it: " + errorOf(events) + " / " + parser.errorString().toUtf8());
    if (result != 1) {
        fuzz::require(events.getErrorCode() == parser.getErrorCode()
                          && events.getCurrentLineNumber() == parser.getCurrentLineNumber()
                          && events.getCurrentColumnNumber() == parser.getCurrentColumnNumber()
                          && errorOf(events) == parser.errorString().toUtf8(),
                      "the failures differ: " + errorOf(events) + " / " + parser.errorString().toUtf8());
        return 0;
    }
    Lines fromTree;
    tell(document, fromTree);
    const auto difference = std::mismatch(fromTree.lines.begin(), fromTree.lines.end(),
                                          events.lines.lines.begin(), events.lines.lines.end());
    fuzz::require(difference.first == fromTree.lines.end() && difference.second == events.lines.lines.end(),
                  "tree: " + (difference.first != fromTree.lines.end() ? *difference.first : "(end)")
                      + "\nevents: "
                      + (difference.second != events.lines.lines.end() ? *difference.second : "(end)"));
    return 0;
}
