#ifndef QRMIDOM_INTERNAL_TREEWRITER_H
#define QRMIDOM_INTERNAL_TREEWRITER_H

#include <vector>

#include <xercesc/dom/DOM.hpp>

#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"

namespace qrm {

/// Writes a node with its subtree. Goes along child and sibling links and remembers the way back itself: the depth of
/// the tree costs no stack, and asking Xerces for a parent takes longer.
class TreeWriter
{
public:
    explicit TreeWriter(DomWriter& writer) : m_writer(writer), m_text(writer) {}

    /// Writes the node, which is not null.
    void write(const xercesc::DOMNode* root);

private:
    bool open(const xercesc::DOMNode* node, const xercesc::DOMNode*& child);
    void close(const xercesc::DOMNode* node);

    const xercesc::DOMNode* openElement(const xercesc::DOMNode* element);
    void writeAttributes(const xercesc::DOMNode* element);
    void writeProcessingInstruction(const xercesc::DOMNode* instruction);
    void writeEntity(const xercesc::DOMEntity& entity);
    void writeDocumentType(const xercesc::DOMDocumentType& doctype);

    template <std::size_t N>
    void literal(const char (&text)[N])
    {
        m_text.literal(text, static_cast<int>(N - 1));
    }
    /// A name, or other content in which a character reference would be taken literally.
    void strict(const XMLCh* text) { m_text.escaped(text, Unexpressible::kError); }
    /// Text or an attribute value.
    void content(const XMLCh* text) { m_text.escaped(text, Unexpressible::kReference); }
    /// An identifier after its keyword; nothing where it is null or empty.
    template <std::size_t N>
    void optional(const char (&before)[N], const XMLCh* text)
    {
        if (text != nullptr && *text != 0) {
            literal(before);
            strict(text);
            literal("\"");
        }
    }

    DomWriter& m_writer;
    TextOutput m_text;
    std::vector<const xercesc::DOMNode*> m_ancestors;
};

} // namespace qrm

#endif
