#ifndef QRMIDOM_DOCUMENTFRAGMENT_H
#define QRMIDOM_DOCUMENTFRAGMENT_H

#include <xercesc/dom/DOMDocumentFragment.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a document fragment: nodes without a common parent, put into a tree in one step.
class QRMIDOM_API QRMIDOM_DocumentFragment
    : public QRMIDOM_TypedNode<QRMIDOM_DocumentFragment, xercesc::DOMDocumentFragment>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_DocumentFragment& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMDocumentFragment* operator->() const { return dom(); }
};

#endif
