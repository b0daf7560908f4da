#include "QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::Sharing;
using qrm::sharing;

QRMIDOM_NamedNodeMap::QRMIDOM_NamedNodeMap(const QRMIDOM_NamedNodeMap& other) : m_nodeImpl(other.m_nodeImpl)
{
    Sharing::take(m_refCountedNodeImpl, other.m_refCountedNodeImpl);
}

QRMIDOM_NamedNodeMap::~QRMIDOM_NamedNodeMap()
{
    qrm::silently([this] { Sharing::giveUp(m_refCountedNodeImpl); });
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Sharing::assign says what that does
QRMIDOM_NamedNodeMap& QRMIDOM_NamedNodeMap::operator=(const QRMIDOM_NamedNodeMap& other)
{
    Sharing::assign(*this, other);
    return *this;
}

bool QRMIDOM_NamedNodeMap::operator==(QRMIDOM_NamedNodeMap* nullPtr) const
{
    QRM_ASSERT_AT(85, nullPtr == NULL);
    return m_nodeImpl == nullptr;
}

bool QRMIDOM_NamedNodeMap::operator!=(QRMIDOM_NamedNodeMap* nullPtr) const
{
    QRM_ASSERT_AT(92, nullPtr == NULL);
    return m_nodeImpl != nullptr;
}

void QRMIDOM_NamedNodeMap::setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl)
{
    QRM_ASSERT_AT(250, refCountedNodeImpl);
    Sharing::take(m_refCountedNodeImpl, refCountedNodeImpl);
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::getNamedItem(const I18NString& name) const
{
    return sharing<QRMIDOM_Node>(
        m_refCountedNodeImpl,
        qrm::expanded(live(m_nodeImpl, QRM_SITE(99))->getNamedItem(Bridge::I18NStringToDOMString(name))));
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::setNamedItem(QRMIDOM_Node node)
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(113));
    return qrm::translated(QRM_SITE(130), [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     wrapped->setNamedItem(qrm::found<xercesc::DOMNode>(node)));
    });
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::removeNamedItem(const I18NString& name)
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(136));
    return qrm::translated(QRM_SITE(154), [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     wrapped->removeNamedItem(Bridge::I18NStringToDOMString(name)));
    });
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::item(unsigned long index) const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                 qrm::expanded(live(m_nodeImpl, QRM_SITE(160))->item(index)));
}

unsigned long QRMIDOM_NamedNodeMap::getLength() const
{
    return live(m_nodeImpl, QRM_SITE(174))->getLength();
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::getNamedItemNS(I18NString& namespaceURI, I18NString& localName) const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                 live(m_nodeImpl, QRM_SITE(181))
                                     ->getNamedItemNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                      Bridge::I18NStringToDOMString(localName)));
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::setNamedItemNS(QRMIDOM_Node node)
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(196));
    return qrm::translated(QRM_SITE(213), [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     wrapped->setNamedItemNS(qrm::found<xercesc::DOMNode>(node)));
    });
}

QRMIDOM_Node QRMIDOM_NamedNodeMap::removeNamedItemNS(const I18NString& namespaceURI,
                                                     const I18NString& localName)
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(219));
    return qrm::translated(QRM_SITE(237), [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     wrapped->removeNamedItemNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                                Bridge::I18NStringToDOMString(localName)));
    });
}
