#ifndef QRMIDOM_INTERNAL_LINKS_H
#define QRMIDOM_INTERNAL_LINKS_H

#include <cstdint>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMAttrImpl.hpp>
#include <xercesc/dom/impl/DOMAttrMapImpl.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMElementImpl.hpp>
#include <xercesc/dom/impl/DOMStringPool.hpp>
#include <xercesc/dom/impl/DOMTextImpl.hpp>
#include <xercesc/util/XMLUniDefs.hpp>

namespace qrm {

// The ways through a tree for those who know the type of a node: its fields, where Xerces' interface takes a virtual
// call, or a search for the field by dynamic_cast. All nodes of Xerces are of these classes, whoever made them.

inline const xercesc::DOMElementImpl& implOf(const xercesc::DOMElement* element)
{
    return *static_cast<const xercesc::DOMElementImpl*>(element);
}

inline const xercesc::DOMAttrImpl& implOf(const xercesc::DOMAttr* attribute)
{
    return *static_cast<const xercesc::DOMAttrImpl*>(attribute);
}

inline const xercesc::DOMTextImpl& implOf(const xercesc::DOMText* text)
{
    return *static_cast<const xercesc::DOMTextImpl*>(text);
}

/// The sibling links of a node of that type, which is no document, attribute or fragment.
inline xercesc::DOMChildNode& siblingsOf(xercesc::DOMNode* node, xercesc::DOMNode::NodeType type)
{
    switch (type) {
    case xercesc::DOMNode::ELEMENT_NODE: return static_cast<xercesc::DOMElementImpl*>(node)->fChild;
    case xercesc::DOMNode::TEXT_NODE: return static_cast<xercesc::DOMTextImpl*>(node)->fChild;
    default: return *xercesc::castToChildImpl(node);
    }
}

/// The next sibling of a node of that type.
inline xercesc::DOMNode* nextSiblingOf(const xercesc::DOMNode* node, xercesc::DOMNode::NodeType type)
{
    switch (type) {
    case xercesc::DOMNode::ELEMENT_NODE:
        return static_cast<const xercesc::DOMElementImpl*>(node)->fChild.nextSibling;
    case xercesc::DOMNode::TEXT_NODE:
        return static_cast<const xercesc::DOMTextImpl*>(node)->fChild.nextSibling;
    default: return node->getNextSibling();
    }
}

/// The parent of a node of any type; null where it has none.
inline xercesc::DOMNode* parentOf(const xercesc::DOMNode* node)
{
    const xercesc::DOMNodeImpl* links = nullptr;
    switch (node->getNodeType()) {
    case xercesc::DOMNode::ELEMENT_NODE:
        links = &static_cast<const xercesc::DOMElementImpl*>(node)->fNode;
        break;
    case xercesc::DOMNode::TEXT_NODE: links = &static_cast<const xercesc::DOMTextImpl*>(node)->fNode; break;
    default: return node->getParentNode();
    }
    return links->isOwned() ? links->fOwnerNode : nullptr;
}

/// Makes a node that is new, of a type with those fields, the parent's. The links to its siblings are still to come.
template <class Node>
void own(xercesc::DOMParentNode& parent, Node& child)
{
    child.fNode.fOwnerNode = parent.fContainingNode;
    child.fNode.isOwned(true);
}

/// Gives a new node to a parent without children.
template <class Node>
void appendFirst(xercesc::DOMParentNode& parent, Node& child)
{
    own(parent, child);
    parent.fFirstChild = &child;
    child.fNode.isFirstChild(true);
    child.fChild.previousSibling = &child;
}

/// Gives a new node to a parent, behind its last child.
template <class Node>
void appendLast(xercesc::DOMParentNode& parent, Node& child)
{
    xercesc::DOMNode* const first = parent.fFirstChild;
    if (first == nullptr) {
        appendFirst(parent, child);
        return;
    }
    own(parent, child);
    // The last child is the previous sibling of the first one.
    xercesc::DOMNode*& last = siblingsOf(first, first->getNodeType()).previousSibling;
    siblingsOf(last, last->getNodeType()).nextSibling = &child;
    child.fChild.previousSibling = last;
    last = &child;
}

/// Asks for the memory that a walk comes to soon. A document puts its nodes one behind the other in large blocks, so
/// what follows a node in the tree mostly follows it in memory as well, a page or so ahead of where we are: too many
/// jumps for the processor to see by itself. Searches in trees that are larger than the cache take half the time.
inline void prefetchBehind(const xercesc::DOMNode* node)
{
    constexpr std::uintptr_t kLine = 64;
    const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(node) + 4096;
    for (std::uintptr_t line = ahead; line != ahead + 4 * kLine; line += kLine) {
        __builtin_prefetch(
            reinterpret_cast<const void*>(line)); // NOLINT(performance-no-int-to-ptr): never followed
    }
}

/// The text, never null.
inline const XMLCh* dataOf(const xercesc::DOMText* text)
{
    return implOf(text).fCharacterData.fDataBuf->getRawBuffer();
}

/// The value of an attribute, never null.
inline const XMLCh* valueOf(const xercesc::DOMAttr* attribute)
{
    const xercesc::DOMNode* const first = implOf(attribute).fParent.fFirstChild;
    if (first != nullptr && first->getNodeType() == xercesc::DOMNode::TEXT_NODE) {
        const auto* const text = static_cast<const xercesc::DOMText*>(first);
        if (implOf(text).fChild.nextSibling == nullptr) {
            return dataOf(text);
        }
    }
    return attribute->getValue();
}

/// The value of a node of any type, null where it has none.
inline const XMLCh* nodeValueOf(const xercesc::DOMNode* node)
{
    return node->getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE
               ? valueOf(static_cast<const xercesc::DOMAttr*>(node))
               : node->getNodeValue();
}

/// The value of the element's attribute of that name, empty where it has none.
inline const XMLCh* attributeOf(const xercesc::DOMElement* element, const XMLCh* name)
{
    const xercesc::DOMNode* const attribute = implOf(element).fAttributes->getNamedItem(name);
    return attribute != nullptr ? valueOf(static_cast<const xercesc::DOMAttr*>(attribute))
                                : xercesc::XMLUni::fgZeroLenString;
}

} // namespace qrm

#endif
