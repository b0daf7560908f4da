#include <QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

constexpr int kMaxText = 60; // code units of a text that are shown

std::string shortened(const I18NString& text)
{
    if (text.length() <= kMaxText) {
        return visible(text.toUtf8());
    }
    // Not within a surrogate pair.
    const char16_t last = text.charAt(kMaxText - 1);
    const int length = last >= 0xD800 && last <= 0xDBFF ? kMaxText - 1 : kMaxText;
    return visible(text.substring(0, length).toUtf8()) + "...";
}

std::string quoted(const char* kind, const I18NString& text)
{
    return std::string(kind) + " \"" + shortened(text) + "\"";
}

std::string element(const QRMIDOM_Node& node)
{
    std::string line = "element " + node.getNodeName().toUtf8();
    if (!node.getNamespaceURI().empty()) {
        line += " {" + visible(node.getNamespaceURI().toUtf8()) + "}";
    }
    const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
    for (unsigned long i = 0; i < attributes.getLength(); ++i) {
        const QRMIDOM_Attr attribute = attributes.item(i);
        line += " " + attribute.getName().toUtf8() + "=\"" + shortened(attribute.getValue()) + "\"";
        if (!attribute.getSpecified()) {
            line += " (default)";
        }
    }
    return line;
}

std::string doctype(const QRMIDOM_DocumentType& type)
{
    std::string line = "doctype " + type.getName().toUtf8();
    if (!type.getPublicId().empty()) {
        line += quoted(" public", type.getPublicId());
    }
    if (!type.getSystemId().empty()) {
        line += quoted(" system", type.getSystemId());
    }
    return line;
}

std::string describe(const QRMIDOM_Node& node)
{
    switch (node.getNodeType()) {
    case 1: return element(node);
    case 3: return quoted("text", node.getNodeValue());
    case 4: return quoted("cdata", node.getNodeValue());
    case 5: return "reference &" + node.getNodeName().toUtf8() + ";";
    case 7: return quoted(("instruction " + node.getNodeName().toUtf8()).c_str(), node.getNodeValue());
    case 8: return quoted("comment", node.getNodeValue());
    case 9: return "document";
    case 10: return doctype(node);
    default: return visible(node.getNodeName().toUtf8());
    }
}

} // namespace

int runTree(const TreeOptions& options)
{
    QRMIDOM_Parser parser;
    prepare(parser, options.read);
    QRMIDOM_Document document;
    const int status = parseFile(parser, options.file, options.read, document);
    if (status != kDone) {
        return status;
    }

    Output output("");
    QRMIDOM_Node node = document;
    for (int depth = 0;;) {
        output.stream() << std::string(2 * static_cast<std::size_t>(depth), ' ') << describe(node) << '\n';
        if (depth != options.depth && node.hasChildNodes()) {
            node = node.getFirstChild();
            ++depth;
            continue;
        }
        while (depth > 0 && node.getNextSibling().isNull()) {
            node = node.getParentNode();
            --depth;
        }
        if (depth == 0) {
            break;
        }
        node = node.getNextSibling();
    }
    output.commit();
    return kDone;
}
