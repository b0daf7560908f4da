#ifndef QRMIDOM_TYPEDNODE_H
#define QRMIDOM_TYPEDNODE_H

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// What every typed handle has. No typed handle checks the type of its node: one made from a handle on a node of
/// another type holds that node, and its own operations then act on something they do not fit. Ask getNodeType()
/// first where it is in doubt.
template <class Handle, class Xerces, class Base = QRMIDOM_Node>
class QRMIDOM_TypedNode : public Base
{
public:
    /// The class between QRMIDOM_Node and a handle of one kind.
    using TypedNode = QRMIDOM_TypedNode;

    /// The null handle.
    QRMIDOM_TypedNode() = default;

    /// The same node, of whatever type, sharing its document.
    QRMIDOM_TypedNode(const QRMIDOM_Node& other) { QRMIDOM_Node::operator=(other); }

    /// A handle on a bare Xerces node, borrowed from its document; null gives the null handle.
    QRMIDOM_TypedNode(Xerces* node) { this->setDOM_NodeImpl(node); }

    /// Leaves the old node and its share, and takes those of the other handle.
    Handle& operator=(const QRMIDOM_Node& other)
    {
        QRMIDOM_Node::operator=(other);
        return static_cast<Handle&>(*this);
    }

    /// The wrapped node, null for the null handle; it stays its document's.
    operator Xerces*() const { return dom(); }

    /// The handle itself.
    Handle* operator->() { return static_cast<Handle*>(this); }
    /// @overload
    const Handle* operator->() const { return static_cast<const Handle*>(this); }

protected:
    /// @overload
    Xerces* dom() const { return static_cast<Xerces*>(this->m_nodeImpl); }
};

#endif
