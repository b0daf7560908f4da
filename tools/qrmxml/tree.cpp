#include <algorithm>
#include <utility>
#include <vector>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h>
#include <unistd.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"
#include "tools/qrmxml/Terminal.h"

namespace {

using Style = Terminal::Style;

/// A line of the outline, in pieces of different styles.
class Line
{
public:
    /// @param maxUnits of a text that is shown
    explicit Line(int maxUnits) : m_maxUnits(maxUnits) {}

    Line& add(const std::string& text, Style style = Style::kPlain)
    {
        m_pieces.emplace_back(text, style);
        return *this;
    }

    Line& addName(const QRMIDOM_Node& node)
    {
        return add(visible(node.getNodeName().toUtf8()), Style::kName);
    }

    /// The beginning of a text in quotes. A backslash always begins an escape, and a quote without one ends the text.
    Line& addQuoted(const I18NString& text)
    {
        std::string quoted = "\"";
        for (const char unit : shortened(text, m_maxUnits)) {
            if (unit == '"' || unit == '\\') {
                quoted += '\\';
            }
            quoted += unit;
        }
        return add(visible(quoted) + '"', Style::kValue);
    }

    /// The line as it goes to a terminal, in its width, or elsewhere, whole.
    std::string on(const Terminal& terminal) const
    {
        int columns = 0;
        for (const auto& [text, style] : m_pieces) {
            columns += columnsOf(text);
        }
        const bool isWhole = terminal.width() == 0 || columns <= terminal.width();
        int left = isWhole ? columns : terminal.width() - 1;
        std::string line;
        for (const auto& [text, style] : m_pieces) {
            const std::string piece = fitting(text, left);
            left -= columnsOf(piece);
            line += piece.empty() ? "" : terminal.styled(piece, style);
            if (piece != text) {
                break;
            }
        }
        return isWhole ? line : line + "\u2026";
    }

private:
    int m_maxUnits;
    std::vector<std::pair<std::string, Style>> m_pieces;
};

void addElement(Line& line, const QRMIDOM_Node& node)
{
    line.add("element ", Style::kNote).addName(node);
    if (!node.getNamespaceURI().empty()) {
        line.add(" {" + visible(node.getNamespaceURI().toUtf8()) + "}", Style::kNote);
    }
    const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
    for (unsigned long i = 0; i < attributes.getLength(); ++i) {
        const QRMIDOM_Attr attribute = attributes.item(i);
        line.add(" ").addName(attribute).add("=").addQuoted(attribute.getValue());
        if (!attribute.getSpecified()) {
            line.add(" (default)", Style::kNote);
        }
    }
}

void addDoctype(Line& line, const QRMIDOM_DocumentType& type)
{
    line.add("doctype ", Style::kNote).addName(type);
    if (!type.getPublicId().empty()) {
        line.add(" public ", Style::kNote).addQuoted(type.getPublicId());
    }
    if (!type.getSystemId().empty()) {
        line.add(" system ", Style::kNote).addQuoted(type.getSystemId());
    }
}

void describe(Line& line, const QRMIDOM_Node& node)
{
    switch (node.getNodeType()) {
    case 1: addElement(line, node); break;
    case 3: line.add("text ", Style::kNote).addQuoted(node.getNodeValue()); break;
    case 4: line.add("cdata ", Style::kNote).addQuoted(node.getNodeValue()); break;
    case 5: line.add("reference ", Style::kNote).add("&").addName(node).add(";"); break;
    case 7:
        line.add("instruction ", Style::kNote).addName(node).add(" ").addQuoted(node.getNodeValue());
        break;
    case 8: line.add("comment ", Style::kNote).addQuoted(node.getNodeValue()); break;
    case 9: line.add("document", Style::kNote); break;
    case 10: addDoctype(line, node); break;
    default: line.addName(node);
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
    const Terminal terminal(STDOUT_FILENO);
    const int maxUnits = terminal.width() > 0 ? terminal.width() : kShortUnits;
    QRMIDOM_Node node = document;
    int depth = 0;
    do {
        // In a narrow terminal the deepest levels stand below each other.
        const int indentation = terminal.width() > 0 ? std::min(2 * depth, terminal.width() / 2) : 2 * depth;
        Line line(maxUnits);
        line.add(std::string(static_cast<std::size_t>(indentation), ' '));
        describe(line, node);
        output.stream() << line.on(terminal) << '\n';
    } while (output.stream().good() && moveOn(node, depth, depth != options.depth));
    output.commit();
    return kDone;
}
