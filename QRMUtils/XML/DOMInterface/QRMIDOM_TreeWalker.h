#ifndef QRMIDOM_TREEWALKER_H
#define QRMIDOM_TREEWALKER_H

#include <xercesc/dom/DOMTreeWalker.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

/// Value handle on a walk through a subtree as its filter shows it, made by QRMIDOM_Document::createTreeWalker(). It keeps
/// the document alive; the Xerces walker belongs to the document. A move gives the null handle where there is no such
/// node, and the walker then stays where it is.
///
/// Every operation that needs the walker throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" where there is none.
class QRMIDOM_API QRMIDOM_TreeWalker
{
public:
    /// Holds nothing.
    QRMIDOM_TreeWalker() = default;

    /// Holds the Xerces object, without a share in its document.
    QRMIDOM_TreeWalker(xercesc::DOMTreeWalker* wrapped) : m_nodeImpl(wrapped) {}

    /// @overload
    QRMIDOM_TreeWalker(const QRMIDOM_TreeWalker& other);
    virtual ~QRMIDOM_TreeWalker();

    /// Gives up the share, then takes the other's object and a share of its holder. Assigned to itself it therefore
    /// ends without a share.
    QRMIDOM_TreeWalker& operator=(const QRMIDOM_TreeWalker& other);

    /// The wrapped Xerces object, null where there is none.
    operator xercesc::DOMTreeWalker*() const { return m_nodeImpl; }

    /// Whether nothing is held; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nullPtr == NULL);" unless the argument is null
    bool operator==(QRMIDOM_TreeWalker* nullPtr) const;
    /// Whether the handle holds a walker; the argument has to be null.
    bool operator!=(QRMIDOM_TreeWalker* nullPtr) const;

    /// The holder this shares, null where it shares none.
    RefCounted_DOMNode* getRefCountedNodeImpl() const { return m_refCountedNodeImpl; }

    /// Takes a share of the holder. A share that was held before is not given up.
    /// @throws QRMAssertError "QRM_ASSERT(refCountedNodeImpl);" on null
    void setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl);

    /// Always the null handle: callers keep the root themselves.
    QRMIDOM_Node getRoot() const;

    /// The node types shown, as the mask the walker was made with.
    unsigned long getWhatToShow() const;
    /// 1 where the content of entity references is visited, 0 where it is not.
    bool getExpandEntityReferences() const;

    /// The node the walker stands on; at first its root.
    QRMIDOM_Node getCurrentNode() const;

    /// Moves to the nearest visible ancestor within the root and gives it; null where there is none, and the walker stays.
    QRMIDOM_Node parentNode();
    /// Moves to the first visible child.
    QRMIDOM_Node firstChild();
    /// Moves to the last visible child.
    QRMIDOM_Node lastChild();
    /// Moves to the visible sibling before.
    QRMIDOM_Node previousSibling();
    /// Moves to the visible sibling behind.
    QRMIDOM_Node nextSibling();
    /// Moves to the visible node before in document order.
    QRMIDOM_Node previousNode();
    /// Moves to the visible node behind in document order.
    QRMIDOM_Node nextNode();

private:
    friend struct qrm::Sharing;

    xercesc::DOMTreeWalker* m_nodeImpl = nullptr;
    RefCounted_DOMNode* m_refCountedNodeImpl = nullptr;
};

#endif
