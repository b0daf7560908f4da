#include "QRMUtils/XML/DOMInterface/internal/TreeWriter.h"

#include <cstring>

using namespace xercesc;

namespace qrm {

void TreeWriter::write(const DOMNode* root)
{
    const DOMNode* node = root;
    for (;;) {
        DOMNode::NodeType type = node->getNodeType();
        const DOMNode* child = nullptr;
        if (open(node, type, child)) {
            if (child != nullptr) {
                m_ancestors.push_back(node);
                node = child;
                continue;
            }
            close(node, type);
        }
        const DOMNode* next = nullptr;
        while (node != root && (next = nextSiblingOf(node, type)) == nullptr) {
            node = m_ancestors.back();
            m_ancestors.pop_back();
            type = node->getNodeType();
            close(node, type);
        }
        if (node == root) {
            return;
        }
        node = next;
    }
}

/// Writes what comes before a node's children, or all of a node that is written without children.
/// @param child gets the first child to be written
/// @return whether children and close() are to follow
bool TreeWriter::open(const DOMNode* node, DOMNode::NodeType type, const DOMNode*& child)
{
    switch (type) {
    case DOMNode::ELEMENT_NODE:
        child = openElement(static_cast<const DOMElement*>(node));
        return child != nullptr;
    case DOMNode::TEXT_NODE: content(dataOf(static_cast<const DOMText*>(node))); return false;
    case DOMNode::CDATA_SECTION_NODE:
        literal("<![CDATA[");
        raw(node->getNodeValue());
        literal("]]>");
        return false;
    case DOMNode::ENTITY_REFERENCE_NODE:
        literal("&");
        strict(node->getNodeName());
        literal(";");
        return false;
    case DOMNode::ENTITY_NODE: writeEntity(static_cast<const DOMEntity&>(*node)); return false;
    case DOMNode::PROCESSING_INSTRUCTION_NODE: writeProcessingInstruction(node); return false;
    case DOMNode::COMMENT_NODE:
        literal("<!--");
        strict(node->getNodeValue());
        literal("-->");
        return false;
    case DOMNode::DOCUMENT_NODE: {
        const char* const header = m_writer.getXMLHeader();
        m_text.literal(header, static_cast<int>(std::strlen(header)));
        child = node->getFirstChild();
        return true;
    }
    case DOMNode::DOCUMENT_TYPE_NODE:
        writeDocumentType(static_cast<const DOMDocumentType&>(*node));
        return false;
    default: return false;
    }
}

void TreeWriter::close(const DOMNode* node, DOMNode::NodeType type)
{
    if (type == DOMNode::DOCUMENT_NODE) {
        m_writer.endline();
    } else {
        literal("</");
        strict(implOf(static_cast<const DOMElement*>(node)).fName);
        literal(">");
    }
}

/// Writes a start tag, or the tag of an empty element.
/// @return the first child, null for an empty element
const DOMNode* TreeWriter::openElement(const DOMElement* element)
{
    literal("<");
    strict(implOf(element).fName);
    writeAttributes(element);
    const DOMNode* const child = implOf(element).fParent.fFirstChild;
    if (child != nullptr) {
        literal(">");
    } else {
        literal("/>");
    }
    return child;
}

void TreeWriter::writeAttributes(const DOMElement* element)
{
    forEachSpecified(element, [this](const DOMAttr* attribute) {
        writeAttribute(attribute);
        return true;
    });
}

void TreeWriter::writeAttribute(const DOMAttr* attribute)
{
    literal(" ");
    strict(implOf(attribute).fName);
    literal("=\"");
    content(valueOf(attribute));
    literal("\"");
}

void TreeWriter::writeProcessingInstruction(const DOMNode* instruction)
{
    literal("<?");
    strict(instruction->getNodeName());
    const XMLCh* const data = instruction->getNodeValue();
    if (!isEmpty(data)) {
        literal(" ");
        strict(data);
    }
    literal("?>");
}

void TreeWriter::writeEntity(const DOMEntity& entity)
{
    literal("<!ENTITY ");
    strict(entity.getNodeName());
    optional(" PUBLIC \"", entity.getPublicId());
    optional(" SYSTEM \"", entity.getSystemId());
    optional(" NDATA \"", entity.getNotationName());
    literal(">\n");
}

void TreeWriter::writeDocumentType(const DOMDocumentType& doctype)
{
    literal("<!DOCTYPE ");
    strict(doctype.getName());
    optional(" PUBLIC \"", doctype.getPublicId());
    optional(" SYSTEM \"", doctype.getSystemId());
    const XMLCh* const internalSubset = doctype.getInternalSubset();
    if (!isEmpty(internalSubset)) {
        literal("[");
        strict(internalSubset);
        literal("]");
    }
    literal(">\n");
}

} // namespace qrm
