#ifndef QRMIDOM_NODEITERATOR_H
#define QRMIDOM_NODEITERATOR_H

#include <xercesc/dom/DOMNodeIterator.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// Value handle on an iterator over a subtree in document order, made by QRMIDOM_Document::createNodeIterator(). It keeps
/// the document alive; the Xerces iterator belongs to the document.
///
/// Every operation that needs the iterator throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" where there is none.
class QRMIDOM_API QRMIDOM_NodeIterator
{
public:
    /// Holds nothing.
    QRMIDOM_NodeIterator() = default;

    /// Holds the Xerces object, without a share in its document.
    QRMIDOM_NodeIterator(xercesc::DOMNodeIterator* wrapped) : m_nodeImpl(wrapped) {}

    /// @overload
    QRMIDOM_NodeIterator(const QRMIDOM_NodeIterator& other);
    virtual ~QRMIDOM_NodeIterator() noexcept(false);

    /// Gives up the share, then takes the other's object and a share of its holder. Assigned to itself it therefore
    /// ends without a share.
    QRMIDOM_NodeIterator& operator=(const QRMIDOM_NodeIterator& other);

    /// The wrapped Xerces object, null where there is none.
    operator xercesc::DOMNodeIterator*() const { return m_nodeImpl; }

    /// Whether nothing is held; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nullPtr == NULL);" unless the argument is null
    bool operator==(QRMIDOM_NodeIterator* nullPtr) const;
    /// Whether the handle holds an iterator; the argument has to be null.
    bool operator!=(QRMIDOM_NodeIterator* nullPtr) const;

    /// Always the null handle: callers keep the root themselves.
    QRMIDOM_Node getRoot() const;

    /// The node types shown, as the mask the iterator was made with.
    unsigned long getWhatToShow() const;
    /// 1 where the content of entity references is visited, 0 where it is not.
    bool getExpandEntityReference() const;

    /// The next node; the null handle at the end.
    /// @throws QRMIDOM_DOMException 11 on a detached iterator
    QRMIDOM_Node nextNode();

    /// The node before; the null handle at the start.
    /// @throws QRMIDOM_DOMException 11 on a detached iterator
    QRMIDOM_Node previousNode();

    /// Ends the iteration.
    void detach();

private:
    friend struct qrm::Sharing;

    xercesc::DOMNodeIterator* m_nodeImpl = nullptr;
    RefCounted_DOMNode* m_refCountedNodeImpl = nullptr;
};

#endif
