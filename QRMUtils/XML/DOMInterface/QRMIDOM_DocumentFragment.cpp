#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentFragment.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

QRMIDOM_DocumentFragment& QRMIDOM_DocumentFragment::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(74, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}
