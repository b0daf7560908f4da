#include "QRMUtils/XML/DOMInterface/QRMIDOM_Comment.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

QRMIDOM_Comment& QRMIDOM_Comment::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(84, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}
