#ifndef QRMIDOM_COMMENT_H
#define QRMIDOM_COMMENT_H

#include <xercesc/dom/DOMComment.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_CharacterData.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a comment.
class QRMIDOM_API QRMIDOM_Comment
    : public QRMIDOM_TypedNode<QRMIDOM_Comment, xercesc::DOMComment, QRMIDOM_CharacterData>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Comment& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMComment* operator->() const { return dom(); }
};

#endif
