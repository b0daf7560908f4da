#include "QRMUtils/XML/DOMInterface/QRMIDOM_TreeWalker.h"

#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"

using qrm::live;
using qrm::Sharing;
using qrm::sharing;

QRMIDOM_TreeWalker::QRMIDOM_TreeWalker(const QRMIDOM_TreeWalker& other) : m_nodeImpl(other.m_nodeImpl)
{
    Sharing::take(m_refCountedNodeImpl, other.m_refCountedNodeImpl);
}

QRMIDOM_TreeWalker::~QRMIDOM_TreeWalker()
{
    qrm::silently([this] { Sharing::giveUp(m_refCountedNodeImpl); });
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Sharing::assign says what that does
QRMIDOM_TreeWalker& QRMIDOM_TreeWalker::operator=(const QRMIDOM_TreeWalker& other)
{
    Sharing::assign(*this, other);
    return *this;
}

bool QRMIDOM_TreeWalker::operator==(QRMIDOM_TreeWalker* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl == nullptr;
}

bool QRMIDOM_TreeWalker::operator!=(QRMIDOM_TreeWalker* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl != nullptr;
}

void QRMIDOM_TreeWalker::setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl)
{
    QRM_ASSERT(refCountedNodeImpl);
    Sharing::take(m_refCountedNodeImpl, refCountedNodeImpl);
}

QRMIDOM_Node QRMIDOM_TreeWalker::getRoot() const
{
    live(m_nodeImpl, QRM_SITE(102));
    return QRMIDOM_Node();
}

unsigned long QRMIDOM_TreeWalker::getWhatToShow() const
{
    return live(m_nodeImpl, QRM_SITE(109))->getWhatToShow();
}

bool QRMIDOM_TreeWalker::getExpandEntityReferences() const
{
    return live(m_nodeImpl, QRM_SITE(116))->getExpandEntityReferences();
}

QRMIDOM_Node QRMIDOM_TreeWalker::getCurrentNode() const
{
    auto* const wrapped = live(m_nodeImpl, QRM_SITE(123));
    return qrm::translated(QRM_SITE(141), [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, wrapped->getCurrentNode());
    });
}

QRMIDOM_Node QRMIDOM_TreeWalker::parentNode()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(147))->parentNode());
}

QRMIDOM_Node QRMIDOM_TreeWalker::firstChild()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(162))->firstChild());
}

QRMIDOM_Node QRMIDOM_TreeWalker::lastChild()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(177))->lastChild());
}

QRMIDOM_Node QRMIDOM_TreeWalker::previousSibling()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(192))->previousSibling());
}

QRMIDOM_Node QRMIDOM_TreeWalker::nextSibling()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(207))->nextSibling());
}

QRMIDOM_Node QRMIDOM_TreeWalker::previousNode()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(222))->previousNode());
}

QRMIDOM_Node QRMIDOM_TreeWalker::nextNode()
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE(237))->nextNode());
}
