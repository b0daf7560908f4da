#include "QRMUtils/XML/DOMInterface/QRMIDOM_EntityReference.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

QRMIDOM_EntityReference& QRMIDOM_EntityReference::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(75, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}
