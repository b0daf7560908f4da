#include "QRMUtils/XML/DOMInterface/QRMIDOM_Element.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::sharing;
using qrm::translated;

QRMIDOM_Element& QRMIDOM_Element::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT(nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

I18NString QRMIDOM_Element::getTagName() const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getTagName());
}

void QRMIDOM_Element::getTagName(I18NString& tagName) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)->getTagName(), tagName);
}

bool QRMIDOM_Element::matchTagName(const I18NString& name) const
{
    return Bridge::MatchI18NString(live(dom(), QRM_SITE_HERE)->getTagName(), name);
}

I18NString QRMIDOM_Element::getAttribute(const I18NString& name) const
{
    return Bridge::DOMStringToI18NString(
        live(dom(), QRM_SITE_HERE)->getAttribute(Bridge::I18NStringToDOMString(name)));
}

void QRMIDOM_Element::getAttribute(const I18NString& name, I18NString& value) const
{
    Bridge::DOMStringToI18NString(
        live(dom(), QRM_SITE_HERE)->getAttribute(Bridge::I18NStringToDOMString(name)), value);
}

bool QRMIDOM_Element::matchAttribute(const I18NString& name, const I18NString& value) const
{
    return Bridge::MatchI18NString(
        live(dom(), QRM_SITE_HERE)->getAttribute(Bridge::I18NStringToDOMString(name)), value);
}

void QRMIDOM_Element::setAttribute(const I18NString& name, const I18NString& value)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    translated(QRM_SITE_HERE, [&] {
        element->setAttribute(Bridge::I18NStringToDOMString(name), Bridge::I18NStringToDOMString(value));
    });
}

void QRMIDOM_Element::removeAttribute(const I18NString& name)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    translated(QRM_SITE_HERE, [&] { element->removeAttribute(Bridge::I18NStringToDOMString(name)); });
}

bool QRMIDOM_Element::hasAttribute(const I18NString& name) const
{
    return live(dom(), QRM_SITE_HERE)->hasAttribute(Bridge::I18NStringToDOMString(name));
}

QRMIDOM_Attr QRMIDOM_Element::getAttributeNode(const I18NString& name) const
{
    return sharing<QRMIDOM_Attr>(
        m_refCountedNodeImpl,
        live(dom(), QRM_SITE_HERE)->getAttributeNode(Bridge::I18NStringToDOMString(name)));
}

QRMIDOM_Attr QRMIDOM_Element::setAttributeNode(QRMIDOM_Attr newAttr)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Attr>(m_refCountedNodeImpl,
                                     element->setAttributeNode(qrm::found<xercesc::DOMAttr>(newAttr)));
    });
}

QRMIDOM_Attr QRMIDOM_Element::removeAttributeNode(QRMIDOM_Attr oldAttr)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Attr>(m_refCountedNodeImpl,
                                     element->removeAttributeNode(qrm::found<xercesc::DOMAttr>(oldAttr)));
    });
}

QRMIDOM_NodeList QRMIDOM_Element::getElementsByTagName(const I18NString& name) const
{
    return sharing<QRMIDOM_NodeList>(
        m_refCountedNodeImpl,
        live(dom(), QRM_SITE_HERE)->getElementsByTagName(Bridge::I18NStringToDOMString(name)));
}

I18NString QRMIDOM_Element::getAttributeNS(const I18NString& namespaceURI, const I18NString& localName) const
{
    return Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)
                                             ->getAttributeNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                              Bridge::I18NStringToDOMString(localName)));
}

void QRMIDOM_Element::getAttributeNS(const I18NString& namespaceURI, const I18NString& localName,
                                     I18NString& value) const
{
    Bridge::DOMStringToI18NString(live(dom(), QRM_SITE_HERE)
                                      ->getAttributeNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                       Bridge::I18NStringToDOMString(localName)),
                                  value);
}

bool QRMIDOM_Element::matchAttributeNS(const I18NString& namespaceURI, const I18NString& localName,
                                       const I18NString& value) const
{
    return getAttributeNS(namespaceURI, localName) == value;
}

void QRMIDOM_Element::setAttributeNS(const I18NString& namespaceURI, const I18NString& qualifiedName,
                                     const I18NString& value)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    translated(QRM_SITE_HERE, [&] {
        element->setAttributeNS(Bridge::I18NStringToDOMString(namespaceURI), qrm::neverNull(qualifiedName),
                                Bridge::I18NStringToDOMString(value));
    });
}

void QRMIDOM_Element::removeAttributeNS(const I18NString& namespaceURI, const I18NString& localName)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    translated(QRM_SITE_HERE, [&] {
        element->removeAttributeNS(Bridge::I18NStringToDOMString(namespaceURI),
                                   Bridge::I18NStringToDOMString(localName));
    });
}

bool QRMIDOM_Element::hasAttributeNS(const I18NString& namespaceURI, const I18NString& localName) const
{
    return live(dom(), QRM_SITE_HERE)
        ->hasAttributeNS(Bridge::I18NStringToDOMString(namespaceURI),
                         Bridge::I18NStringToDOMString(localName));
}

QRMIDOM_Attr QRMIDOM_Element::getAttributeNodeNS(const I18NString& namespaceURI,
                                                 const I18NString& localName) const
{
    return sharing<QRMIDOM_Attr>(m_refCountedNodeImpl,
                                 live(dom(), QRM_SITE_HERE)
                                     ->getAttributeNodeNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                          Bridge::I18NStringToDOMString(localName)));
}

QRMIDOM_Attr QRMIDOM_Element::setAttributeNodeNS(QRMIDOM_Attr newAttr)
{
    auto* const element = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Attr>(m_refCountedNodeImpl,
                                     element->setAttributeNodeNS(qrm::found<xercesc::DOMAttr>(newAttr)));
    });
}

QRMIDOM_NodeList QRMIDOM_Element::getElementsByTagNameNS(const I18NString& namespaceURI,
                                                         const I18NString& localName) const
{
    return sharing<QRMIDOM_NodeList>(m_refCountedNodeImpl,
                                     live(dom(), QRM_SITE_HERE)
                                         ->getElementsByTagNameNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                                  Bridge::I18NStringToDOMString(localName)));
}
