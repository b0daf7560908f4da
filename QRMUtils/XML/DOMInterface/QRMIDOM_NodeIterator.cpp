#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeIterator.h"

#include "QRMUtils/XML/DOMInterface/internal/Iterators.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"

using qrm::live;
using qrm::Sharing;
using qrm::sharing;

QRMIDOM_NodeIterator::QRMIDOM_NodeIterator(const QRMIDOM_NodeIterator& other) : m_nodeImpl(other.m_nodeImpl)
{
    Sharing::take(m_refCountedNodeImpl, other.m_refCountedNodeImpl);
}

QRMIDOM_NodeIterator::~QRMIDOM_NodeIterator() noexcept(false)
{
    Sharing::giveUp(m_refCountedNodeImpl);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Sharing::assign says what that does
QRMIDOM_NodeIterator& QRMIDOM_NodeIterator::operator=(const QRMIDOM_NodeIterator& other)
{
    Sharing::assign(*this, other);
    return *this;
}

bool QRMIDOM_NodeIterator::operator==(QRMIDOM_NodeIterator* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl == nullptr;
}

bool QRMIDOM_NodeIterator::operator!=(QRMIDOM_NodeIterator* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl != nullptr;
}

QRMIDOM_Node QRMIDOM_NodeIterator::getRoot() const
{
    live(m_nodeImpl, QRM_SITE(98));
    return QRMIDOM_Node();
}

unsigned long QRMIDOM_NodeIterator::getWhatToShow() const
{
    return qrm::shownTypes(live(m_nodeImpl, QRM_SITE(105)));
}

bool QRMIDOM_NodeIterator::getExpandEntityReference() const
{
    return live(m_nodeImpl, QRM_SITE(112))->getExpandEntityReferences();
}

QRMIDOM_Node QRMIDOM_NodeIterator::nextNode()
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(119));
    return qrm::translated(QRM_SITE(136),
                           [&] { return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, wrapped->nextNode()); });
}

QRMIDOM_Node QRMIDOM_NodeIterator::previousNode()
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(142));
    return qrm::translated(
        QRM_SITE(159), [&] { return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, wrapped->previousNode()); });
}

void QRMIDOM_NodeIterator::detach()
{
    live(m_nodeImpl, QRM_SITE(165))->detach();
}
