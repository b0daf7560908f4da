#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;

QRMIDOM_DocumentType& QRMIDOM_DocumentType::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT_AT(144, nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_DocumentType::getName() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(71))->getName());
}

void QRMIDOM_DocumentType::getName(I18NString& name) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(152))->getName(), name);
}

QRMIDOM_NamedNodeMap QRMIDOM_DocumentType::getEntities() const
{
    return qrm::sharing<QRMIDOM_NamedNodeMap>(m_refCountedNodeImpl, live(dom(), QRM_SITE(81))->getEntities());
}

QRMIDOM_NamedNodeMap QRMIDOM_DocumentType::getNotations() const
{
    return qrm::sharing<QRMIDOM_NamedNodeMap>(m_refCountedNodeImpl,
                                              live(dom(), QRM_SITE(95))->getNotations());
}

I18NString QRMIDOM_DocumentType::getPublicId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(109))->getPublicId());
}

void QRMIDOM_DocumentType::getPublicId(I18NString& publicId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(158))->getPublicId(), publicId);
}

I18NString QRMIDOM_DocumentType::getSystemId() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(119))->getSystemId());
}

void QRMIDOM_DocumentType::getSystemId(I18NString& systemId) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(164))->getSystemId(), systemId);
}

I18NString QRMIDOM_DocumentType::getInternalSubset() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(129))->getInternalSubset());
}

void QRMIDOM_DocumentType::getInternalSubset(I18NString& internalSubset) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE(170))->getInternalSubset(), internalSubset);
}
