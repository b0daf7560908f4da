#include "QRMUtils/XML/DOMInterface/QRMIDOM_Notation.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;

QRMIDOM_Notation& QRMIDOM_Notation::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(96, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_Notation::getPublicId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(71))->getPublicId());
}

void QRMIDOM_Notation::getPublicId(I18NString& publicId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(104))->getPublicId(), publicId);
}

I18NString QRMIDOM_Notation::getSystemId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(81))->getSystemId());
}

void QRMIDOM_Notation::getSystemId(I18NString& systemId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(110))->getSystemId(), systemId);
}
