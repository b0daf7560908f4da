#include "QRMUtils/XML/DOMInterface/QRMIDOM_Text.h"

#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

QRMIDOM_Text& QRMIDOM_Text::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(97, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

QRMIDOM_Text QRMIDOM_Text::splitText(unsigned long offset)
{
    auto* const text = qrm::live(dom(), QRM_SITE(70));
    return qrm::translated(QRM_SITE(81), [&] { return QRMIDOM_Text(text->splitText(offset)); });
}
