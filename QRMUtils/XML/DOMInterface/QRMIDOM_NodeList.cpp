#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h"

#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"

using qrm::live;
using qrm::Sharing;
using qrm::sharing;

QRMIDOM_NodeList::QRMIDOM_NodeList(const QRMIDOM_NodeList& other) : m_nodeImpl(other.m_nodeImpl)
{
    Sharing::take(m_refCountedNodeImpl, other.m_refCountedNodeImpl);
}

QRMIDOM_NodeList::~QRMIDOM_NodeList()
{
    qrm::silently([this] { Sharing::giveUp(m_refCountedNodeImpl); });
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Sharing::assign says what that does
QRMIDOM_NodeList& QRMIDOM_NodeList::operator=(const QRMIDOM_NodeList& other)
{
    Sharing::assign(*this, other);
    return *this;
}

bool QRMIDOM_NodeList::operator==(QRMIDOM_NodeList* nullPtr) const
{
    QRM_ASSERT_AT(99, nullPtr == NULL);
    return m_nodeImpl == nullptr;
}

bool QRMIDOM_NodeList::operator!=(QRMIDOM_NodeList* nullPtr) const
{
    QRM_ASSERT_AT(106, nullPtr == NULL);
    return m_nodeImpl != nullptr;
}

void QRMIDOM_NodeList::setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl)
{
    QRM_ASSERT_AT(139, refCountedNodeImpl);
    Sharing::take(m_refCountedNodeImpl, refCountedNodeImpl);
}

QRMIDOM_Node QRMIDOM_NodeList::item(unsigned long index) const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(113))->item(index));
}

unsigned long QRMIDOM_NodeList::getLength() const
{
    return live(m_nodeImpl, QRM_SITE(127))->getLength();
}
