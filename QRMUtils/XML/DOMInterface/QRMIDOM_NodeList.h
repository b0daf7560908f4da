#ifndef QRMIDOM_NODELIST_H
#define QRMIDOM_NODELIST_H

#include <xercesc/dom/DOMNodeList.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// Value handle on a list of nodes: the children of a node, or the elements of a name. The list is live: it follows the
/// tree. It keeps the document alive as a node handle does.
///
/// Every operation that needs the list throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" where there is none.
class QRMIDOM_API QRMIDOM_NodeList
{
public:
    /// Holds nothing.
    QRMIDOM_NodeList() = default;

    /// Holds the Xerces object, without a share in its document.
    QRMIDOM_NodeList(xercesc::DOMNodeList* wrapped) : m_nodeImpl(wrapped) {}

    /// @overload
    QRMIDOM_NodeList(const QRMIDOM_NodeList& other);
    virtual ~QRMIDOM_NodeList();

    /// Gives up the share, then takes the other's object and a share of its holder. Assigned to itself it therefore
    /// ends without a share.
    QRMIDOM_NodeList& operator=(const QRMIDOM_NodeList& other);

    /// The wrapped Xerces object, null where there is none.
    operator xercesc::DOMNodeList*() const { return m_nodeImpl; }

    /// Whether both are the very same list of Xerces.
    bool operator==(const QRMIDOM_NodeList& other) const { return m_nodeImpl == other.m_nodeImpl; }
    /// Whether the handles hold different lists.
    bool operator!=(const QRMIDOM_NodeList& other) const { return m_nodeImpl != other.m_nodeImpl; }

    /// Whether nothing is held; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nullPtr == NULL);" unless the argument is null
    bool operator==(QRMIDOM_NodeList* nullPtr) const;
    /// @overload
    bool operator!=(QRMIDOM_NodeList* nullPtr) const;

    /// The holder this shares, null where it shares none.
    RefCounted_DOMNode* getRefCountedNodeImpl() const { return m_refCountedNodeImpl; }

    /// Takes a share of the holder. A share that was held before is not given up.
    /// @throws QRMAssertError "QRM_ASSERT(refCountedNodeImpl);" on null
    void setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl);

    /// The node at an index from 0; the null handle from the length on.
    QRMIDOM_Node item(unsigned long index) const;
    /// The number of nodes, counted anew where the tree has changed.
    unsigned long getLength() const;

    /// The wrapped Xerces list.
    xercesc::DOMNodeList* operator->() const { return m_nodeImpl; }

private:
    friend struct qrm::Sharing;

    xercesc::DOMNodeList* m_nodeImpl = nullptr;
    RefCounted_DOMNode* m_refCountedNodeImpl = nullptr;
};

#endif
