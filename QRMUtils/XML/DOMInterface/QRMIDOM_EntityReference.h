#ifndef QRMIDOM_ENTITYREFERENCE_H
#define QRMIDOM_ENTITYREFERENCE_H

#include <xercesc/dom/DOMEntityReference.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on an entity reference. Its children, the entity's replacement, are read-only.
class QRMIDOM_API QRMIDOM_EntityReference
    : public QRMIDOM_TypedNode<QRMIDOM_EntityReference, xercesc::DOMEntityReference>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_EntityReference& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMEntityReference* operator->() const { return dom(); }
};

#endif
