#ifndef QRMIDOM_INTERNAL_TREEWRITER_H
#define QRMIDOM_INTERNAL_TREEWRITER_H

#include <vector>

#include "QRMUtils/XML/DOMInterface/internal/Links.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"
#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"

namespace qrm {

/// Writes a node with its subtree. Goes along child and sibling links and remembers the way back itself: the depth of
/// the tree costs no stack, and asking Xerces for a parent takes longer.
class TreeWriter
{
public:
    explicit TreeWriter(DomWriter& writer) : m_writer(writer), m_text(writer) {}
    TreeWriter(const TreeWriter&) = delete;
    TreeWriter& operator=(const TreeWriter&) = delete;
    virtual ~TreeWriter() = default;

    /// Writes the node, which is not null.
    void write(const xercesc::DOMNode* root);

protected:
    /// Writes what stands in a start tag behind the name.
    virtual void writeAttributes(const xercesc::DOMElement* element);

    void writeAttribute(const xercesc::DOMAttr* attribute);

    /// Calls with each attribute that is not just a default of the document type, until a call gives false.
    /// @return whether all calls gave true
    template <class Call>
    static bool forEachSpecified(const xercesc::DOMElement* element, Call&& call)
    {
        const xercesc::DOMNamedNodeMap& attributes = *implOf(element).fAttributes;
        const XMLSize_t count = attributes.getLength();
        for (XMLSize_t i = 0; i < count; ++i) {
            const auto* const attribute = static_cast<const xercesc::DOMAttr*>(attributes.item(i));
            if (implOf(attribute).fNode.isSpecified() && !call(attribute)) {
                return false;
            }
        }
        return true;
    }

    /// The parent of the node that is being written, also where that is the first one.
    const xercesc::DOMNode* parentOf(const xercesc::DOMNode* node) const
    {
        return m_ancestors.empty() ? node->getParentNode() : m_ancestors.back();
    }

    template <std::size_t N>
    void literal(const char (&text)[N])
    {
        m_text.literal(text, static_cast<int>(N - 1));
    }
    /// A name, or other content in which a character reference would be taken literally.
    void strict(const XMLCh* text) { m_text.escaped(text, Unexpressible::kError); }
    /// Text or an attribute value.
    void content(const XMLCh* text) { m_text.escaped(text, Unexpressible::kReference); }
    /// Text that is not escaped.
    void raw(const XMLCh* text) { m_text.raw(text); }

private:
    bool open(const xercesc::DOMNode* node, xercesc::DOMNode::NodeType type, const xercesc::DOMNode*& child);
    void close(const xercesc::DOMNode* node, xercesc::DOMNode::NodeType type);

    const xercesc::DOMNode* openElement(const xercesc::DOMElement* element);
    void writeProcessingInstruction(const xercesc::DOMNode* instruction);
    void writeEntity(const xercesc::DOMEntity& entity);
    void writeDocumentType(const xercesc::DOMDocumentType& doctype);

    /// An identifier after its keyword; nothing where it is null or empty.
    template <std::size_t N>
    void optional(const char (&before)[N], const XMLCh* text)
    {
        if (!isEmpty(text)) {
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
