#include "QRMUtils/XML/DOMInterface/QRMIDOM_CDATASection.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

QRMIDOM_CDATASection& QRMIDOM_CDATASection::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(94, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}
