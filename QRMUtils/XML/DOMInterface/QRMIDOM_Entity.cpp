#include "QRMUtils/XML/DOMInterface/QRMIDOM_Entity.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;

QRMIDOM_Entity& QRMIDOM_Entity::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(106, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_Entity::getSystemId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(71))->getSystemId());
}

void QRMIDOM_Entity::getSystemId(I18NString& systemId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(114))->getSystemId(), systemId);
}

I18NString QRMIDOM_Entity::getPublicId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(81))->getPublicId());
}

void QRMIDOM_Entity::getPublicId(I18NString& publicId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(120))->getPublicId(), publicId);
}

I18NString QRMIDOM_Entity::getNotationName() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(91))->getNotationName());
}

void QRMIDOM_Entity::getNotationName(I18NString& notationName) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(126))->getNotationName(), notationName);
}
