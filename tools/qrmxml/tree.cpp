#include <QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

std::string nameOf(const QRMIDOM_Node& node)
{
    return visible(node.getNodeName().toUtf8());
}

/// The beginning of a text in quotes. A backslash always begins an escape, and a quote without one ends the text.
std::string quoted(const I18NString& text)
{
    std::string quoted = "\"";
    for (const char unit : shortened(text)) {
        if (unit == '"' || unit == '\\') {
            quoted += '\\';
        }
        quoted += unit;
    }
    return visible(quoted) + '"';
}

std::string element(const QRMIDOM_Node& node)
{
    std::string line = "element " + nameOf(node);
    if (!node.getNamespaceURI().empty()) {
        line += " {" + visible(node.getNamespaceURI().toUtf8()) + "}";
    }
    const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
    for (unsigned long i = 0; i < attributes.getLength(); ++i) {
        const QRMIDOM_Attr attribute = attributes.item(i);
        line += " " + nameOf(attribute) + "=" + quoted(attribute.getValue());
        if (!attribute.getSpecified()) {
            line += " (default)";
        }
    }
    return line;
}

std::string doctype(const QRMIDOM_DocumentType& type)
{
    std::string line = "doctype " + nameOf(type);
    if (!type.getPublicId().empty()) {
        line += " public " + quoted(type.getPublicId());
    }
    if (!type.getSystemId().empty()) {
        line += " system " + quoted(type.getSystemId());
    }
    return line;
}

std::string describe(const QRMIDOM_Node& node)
{
    switch (node.getNodeType()) {
    case 1: return element(node);
    case 3: return "text " + quoted(node.getNodeValue());
    case 4: return "cdata " + quoted(node.getNodeValue());
    case 5: return "reference &" + nameOf(node) + ";";
    case 7: return "instruction " + nameOf(node) + " " + quoted(node.getNodeValue());
    case 8: return "comment " + quoted(node.getNodeValue());
    case 9: return "document";
    case 10: return doctype(node);
    default: return nameOf(node);
    }
}

} // namespace

int runTree(const TreeOptions& options)
{
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status != kDone) {
        return status;
    }

    Output output("-");
    QRMIDOM_Node node = document;
    int depth = 0;
    do {
        output.stream() << std::string(2 * static_cast<std::size_t>(depth), ' ') << describe(node) << '\n';
    } while (output.stream().good() && moveOn(node, depth, depth != options.depth));
    output.commit();
    return kDone;
}
