#ifndef QRMIDOM_NODE_H
#define QRMIDOM_NODE_H

#include <xercesc/dom/DOMNode.hpp>

#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h"
#include "QRMUtils/XML/DOMInterface/RefCounted_DOMNode.h"

class QRMIDOM_Document;
class QRMIDOM_NamedNodeMap;
class QRMIDOM_NodeList;

namespace qrm {
struct Sharing;
}

/// Value handle on one node of a tree, and the base of every typed handle.
///
/// A handle holds a node, or none (the null handle), and may share the holder that owns the node's document: the
/// document lives as long as any handle obtained through it. Copies are cheap and stand for the same node. A tree and
/// all its handles belong to one thread at a time.
///
/// Every operation that needs the node throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" on a null handle.
/// Operations that change or create nodes throw QRMIDOM_DOMException with the DOM code, and QRMOutOfMemoryError 300
/// when Xerces runs out of memory; the others let errors of Xerces pass as they are. Strings come back empty where
/// the DOM has none (null); an empty string argument stands for none.
class QRMIDOM_API QRMIDOM_Node
{
public:
    /// The null handle.
    QRMIDOM_Node() = default;

    /// The same node, sharing its document.
    QRMIDOM_Node(const QRMIDOM_Node& other)
        : m_nodeImpl(other.m_nodeImpl), m_refCountedNodeImpl(other.m_refCountedNodeImpl)
    {
        if (m_refCountedNodeImpl != nullptr) {
            m_refCountedNodeImpl->addReference();
        }
    }

    /// A handle on a bare Xerces node. A document is adopted: the last handle that shares it releases it, so adopt a
    /// document once and copy the handle after that. Any other node is borrowed from its document.
    /// @throws QRMOutOfMemoryError 0
    QRMIDOM_Node(xercesc::DOMNode* node);

    /// Gives up the share; errors of the release are discarded.
    virtual ~QRMIDOM_Node()
    {
        if (m_refCountedNodeImpl != nullptr) {
            release();
        }
    }

    /// Leaves the old node and its share, and takes those of the other handle.
    /// @throws xercesc::DOMException 15 when the last share of a clone goes that has been put into a tree; this handle
    ///         then still holds its node, without the share
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): equal holders are the second case
    QRMIDOM_Node& operator=(const QRMIDOM_Node& other)
    {
        if (m_refCountedNodeImpl != other.m_refCountedNodeImpl) {
            assign(other);
        } else if (m_refCountedNodeImpl == nullptr || m_refCountedNodeImpl->getCount() != 1) {
            // Giving up a share and taking it again changes no count.
            m_nodeImpl = other.m_nodeImpl;
        }
        return *this;
    }

    /// Makes this the null handle, without a share.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Node& operator=(const QRMIDOM_Node* nodePrt);

    /// Whether both hold the same node, or none.
    bool operator==(const QRMIDOM_Node& other) const { return m_nodeImpl == other.m_nodeImpl; }
    /// Whether the handles hold different nodes.
    bool operator!=(const QRMIDOM_Node& other) const { return m_nodeImpl != other.m_nodeImpl; }

    /// Whether this is the null handle; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    bool operator==(const QRMIDOM_Node* nodePrt) const;
    /// @overload
    bool operator!=(const QRMIDOM_Node* nodePrt) const;

    /// Whether the handle holds no node.
    bool isNull() const { return m_nodeImpl == nullptr; }

    /// The wrapped node, null for the null handle; it stays its document's.
    operator xercesc::DOMNode*() const { return m_nodeImpl; }
    /// Xerces' node, which the handle's document owns; null in the null handle.
    xercesc::DOMNode* getDOM_NodeImpl() const { return m_nodeImpl; }

    /// The handle itself.
    QRMIDOM_Node* operator->() { return this; }
    /// @overload
    const QRMIDOM_Node* operator->() const { return this; }

    /// Points the handle at another node, or at none; its share stays what it is and nothing is adopted.
    void setDOM_NodeImpl(xercesc::DOMNode* node) { m_nodeImpl = node; }

    /// The holder this handle shares, null where it shares none.
    RefCounted_DOMNode* getRefCountedNodeImpl() const { return m_refCountedNodeImpl; }

    /// Takes a share of the holder. A share that the handle had before is not given up: for handles without one.
    /// @throws QRMAssertError "QRM_ASSERT(refCountedNodeImpl);" on null
    void setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl);

    /// The node's name as DOM Level 3 Core gives it for its type; "#text" for a text node, for example.
    I18NString getNodeName() const;
    /// @overload
    void getNodeName(I18NString& name) const;

    /// The node's value; empty for the types that have none.
    I18NString getNodeValue() const;
    /// @overload
    void getNodeValue(I18NString& value) const;

    /// Changes the value; does nothing on the types that have none.
    /// @throws xercesc::DOMException 7 when the node is read-only
    void setNodeValue(const I18NString& value);

    /// The DOM node type, 1 (element) to 12 (notation).
    unsigned short getNodeType() const;

    // Navigation: the null handle, still sharing the document, where there is no such node.

    /// The parent; null for documents, attributes and what is in no tree.
    QRMIDOM_Node getParentNode() const;
    /// The first child, or the null handle.
    QRMIDOM_Node getFirstChild() const;
    /// The last child, or the null handle.
    QRMIDOM_Node getLastChild() const;
    /// The node before this one below the same parent, or the null handle.
    QRMIDOM_Node getPreviousSibling() const;
    /// The node behind this one below the same parent, or the null handle.
    QRMIDOM_Node getNextSibling() const;

    /// The children as a live list. Its length and items are counted from the first child each time: to visit all
    /// children, go from sibling to sibling.
    QRMIDOM_NodeList getChildNodes() const;

    /// The attributes of an element, sorted by qualified name; the null map for any other node.
    QRMIDOM_NamedNodeMap getAttributes() const;

    /// The document the node belongs to; the null handle, without a share, for a document.
    QRMIDOM_Document getOwnerDocument() const;

    /// Inserts a child before another one, or at the end where that is null. A fragment gives its children.
    /// @return the inserted child
    /// @throws QRMIDOM_DOMException 3 where the DOM allows no such child here, 4 for a node of another document, 7 on
    ///         a read-only node, 8 when refChild is not a child
    QRMIDOM_Node insertBefore(QRMIDOM_Node newChild, QRMIDOM_Node refChild);

    /// Puts a child in the place of another one.
    /// @return the child that was replaced
    /// @throws QRMIDOM_DOMException as insertBefore
    QRMIDOM_Node replaceChild(QRMIDOM_Node newChild, QRMIDOM_Node oldChild);

    /// Takes a child out of the tree; its document still owns it.
    /// @return that child
    /// @throws QRMIDOM_DOMException 7 on a read-only node, 8 when oldChild is not a child
    QRMIDOM_Node removeChild(QRMIDOM_Node oldChild);

    /// Puts a child at the end. A fragment gives its children.
    /// @return the appended child
    /// @throws QRMIDOM_DOMException as insertBefore
    QRMIDOM_Node appendChild(QRMIDOM_Node newChild);

    /// Whether there are children.
    bool hasChildNodes() const;

    /// A copy without a parent; with its subtree where deep is not 0. The copy of a document is a new document. The
    /// copy shares this handle's document if this handle does; otherwise it is owned by the handle returned and
    /// released with the last copy of that, which must go before the document does.
    /// @throws QRMIDOM_DOMException 9 for a document type that belongs to no document
    /// @throws QRMOutOfMemoryError 0 when there is no memory for a holder
    QRMIDOM_Node cloneNode(int deep) const;

    /// Joins neighbouring text nodes in the subtree and removes empty ones.
    void normalize();

    /// Whether the implementation has the feature in that version; an empty version stands for any.
    bool supports(const I18NString& feature, const I18NString& version) const;

    /// The namespace URI; empty where there is none.
    I18NString getNamespaceURI() const;
    /// @overload
    void getNamespaceURI(I18NString& namespaceURI) const;

    /// The namespace prefix; empty where there is none.
    I18NString getPrefix() const;
    /// @overload
    void getPrefix(I18NString& prefix) const;

    /// The local name; empty on nodes made without namespaces.
    I18NString getLocalName() const;
    /// @overload
    void getLocalName(I18NString& localName) const;

    // Comparison by code unit, without a copy; none (null) equals the empty string.

    /// Whether the name is that one, without making a string; an absent name is empty.
    bool matchNodeName(const I18NString& name) const;
    /// Whether the namespace is that one, without making a string; no namespace is empty.
    bool matchNamespaceURI(const I18NString& namespaceURI) const;
    /// Whether the local name is that one, without making a string; an absent one is empty.
    bool matchLocalName(const I18NString& localName) const;

protected:
    friend struct qrm::Sharing;

    /// The node; null in the null handle.
    xercesc::DOMNode* m_nodeImpl = nullptr;
    /// What the handle shares; null where it shares nothing.
    RefCounted_DOMNode* m_refCountedNodeImpl = nullptr;

private:
    void release() noexcept
    {
        if (m_refCountedNodeImpl->getCount() != 1) {
            m_refCountedNodeImpl->removeReference();
        } else {
            releaseLast();
        }
    }
    void releaseLast() noexcept;
    void assign(const QRMIDOM_Node& other);
};

#endif
