#include "QRMUtils/XML/DOMInterface/QRMIDOM_ProcessingInstruction.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;

QRMIDOM_ProcessingInstruction& QRMIDOM_ProcessingInstruction::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(97, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_ProcessingInstruction::getTarget() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(72))->getTarget());
}

void QRMIDOM_ProcessingInstruction::getTarget(I18NString& target) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(105))->getTarget(), target);
}

I18NString QRMIDOM_ProcessingInstruction::getData() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(82))->getData());
}

void QRMIDOM_ProcessingInstruction::getData(I18NString& data) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(111))->getData(), data);
}
