#include "QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Element.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;

QRMIDOM_Attr& QRMIDOM_Attr::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT(nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_Attr::getName() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getName());
}

void QRMIDOM_Attr::getName(I18NString& name) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getName(), name);
}

bool QRMIDOM_Attr::getSpecified() const
{
    return live(dom(), QRM_SITE_HERE)->getSpecified();
}

I18NString QRMIDOM_Attr::getValue() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getValue());
}

void QRMIDOM_Attr::getValue(I18NString& value) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getValue(), value);
}

QRMIDOM_Element QRMIDOM_Attr::getOwnerElement() const
{
    return qrm::sharing<QRMIDOM_Element>(m_refCountedNodeImpl, live(dom(), QRM_SITE_HERE)->getOwnerElement());
}
