#include "QRMUtils/XML/DOMInterface/QRMIDOM_Node.h"

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Links.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::Sharing;
using qrm::sharing;
using qrm::translated;
using xercesc::DOMNode;

namespace {

/// Xerces accepts a node as its own child and loses both, and follows a null child of a document.
void refuseNullOrSelf(const DOMNode* parent, const DOMNode* child)
{
    if (child == nullptr || child == parent) {
        qrm::raiseDOMException(xercesc::DOMException::HIERARCHY_REQUEST_ERR);
    }
}

/// Xerces follows the missing document of such a document type.
void refuseDetachedDoctype(const DOMNode* node)
{
    if (node->getNodeType() == DOMNode::DOCUMENT_TYPE_NODE && node->getOwnerDocument() == nullptr) {
        qrm::raiseDOMException(xercesc::DOMException::NOT_SUPPORTED_ERR);
    }
}

} // namespace

QRMIDOM_Node::QRMIDOM_Node(DOMNode* node) : m_nodeImpl(node)
{
    if (node != nullptr && node->getNodeType() == DOMNode::DOCUMENT_NODE) {
        Sharing::own(m_refCountedNodeImpl, node, QRM_SITE_HERE);
    }
}

void QRMIDOM_Node::releaseLast() noexcept
{
    qrm::silently([this] { Sharing::giveUp(m_refCountedNodeImpl); });
}

void QRMIDOM_Node::assign(const QRMIDOM_Node& other)
{
    Sharing::giveUp(m_refCountedNodeImpl);
    m_nodeImpl = other.m_nodeImpl;
    Sharing::take(m_refCountedNodeImpl, other.m_refCountedNodeImpl);
}

QRMIDOM_Node& QRMIDOM_Node::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT(nodePrt == NULL);
    Sharing::giveUp(m_refCountedNodeImpl);
    m_nodeImpl = nullptr;
    return *this;
}

bool QRMIDOM_Node::operator==(const QRMIDOM_Node* nodePrt) const
{
    QRM_ASSERT(nodePrt == NULL);
    return isNull();
}

bool QRMIDOM_Node::operator!=(const QRMIDOM_Node* nodePrt) const
{
    QRM_ASSERT(nodePrt == NULL);
    return !isNull();
}

void QRMIDOM_Node::setRefCountedNodeImpl(RefCounted_DOMNode* refCountedNodeImpl)
{
    QRM_ASSERT(refCountedNodeImpl);
    Sharing::take(m_refCountedNodeImpl, refCountedNodeImpl);
}

I18NString QRMIDOM_Node::getNodeName() const
{
    return Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNodeName());
}

void QRMIDOM_Node::getNodeName(I18NString& name) const
{
    Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNodeName(), name);
}

I18NString QRMIDOM_Node::getNodeValue() const
{
    return Bridge::DOMStringToI18NString(qrm::nodeValueOf(live(m_nodeImpl, QRM_SITE_HERE)));
}

void QRMIDOM_Node::getNodeValue(I18NString& value) const
{
    Bridge::DOMStringToI18NString(qrm::nodeValueOf(live(m_nodeImpl, QRM_SITE_HERE)), value);
}

void QRMIDOM_Node::setNodeValue(const I18NString& value)
{
    live(m_nodeImpl, QRM_SITE_HERE)->setNodeValue(Bridge::I18NStringToDOMString(value));
}

unsigned short QRMIDOM_Node::getNodeType() const
{
    return static_cast<unsigned short>(live(m_nodeImpl, QRM_SITE_HERE)->getNodeType());
}

QRMIDOM_Node QRMIDOM_Node::getParentNode() const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, qrm::parentOf(live(m_nodeImpl, QRM_SITE_HERE)));
}

QRMIDOM_Node QRMIDOM_Node::getFirstChild() const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE_HERE)->getFirstChild());
}

QRMIDOM_Node QRMIDOM_Node::getLastChild() const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE_HERE)->getLastChild());
}

QRMIDOM_Node QRMIDOM_Node::getPreviousSibling() const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE_HERE)->getPreviousSibling());
}

QRMIDOM_Node QRMIDOM_Node::getNextSibling() const
{
    return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE_HERE)->getNextSibling());
}

QRMIDOM_NodeList QRMIDOM_Node::getChildNodes() const
{
    return sharing<QRMIDOM_NodeList>(m_refCountedNodeImpl, live(m_nodeImpl, QRM_SITE_HERE)->getChildNodes());
}

QRMIDOM_NamedNodeMap QRMIDOM_Node::getAttributes() const
{
    return sharing<QRMIDOM_NamedNodeMap>(m_refCountedNodeImpl,
                                         live(m_nodeImpl, QRM_SITE_HERE)->getAttributes());
}

QRMIDOM_Document QRMIDOM_Node::getOwnerDocument() const
{
    xercesc::DOMDocument* const owner = live(m_nodeImpl, QRM_SITE_HERE)->getOwnerDocument();
    return sharing<QRMIDOM_Document>(owner != nullptr ? m_refCountedNodeImpl : nullptr, owner);
}

QRMIDOM_Node QRMIDOM_Node::insertBefore(QRMIDOM_Node newChild, QRMIDOM_Node refChild)
{
    DOMNode* const parent = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        refuseNullOrSelf(parent, newChild);
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, parent->insertBefore(newChild, refChild));
    });
}

QRMIDOM_Node QRMIDOM_Node::replaceChild(QRMIDOM_Node newChild, QRMIDOM_Node oldChild)
{
    DOMNode* const parent = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        refuseNullOrSelf(parent, newChild);
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     parent->replaceChild(newChild, qrm::found<DOMNode>(oldChild)));
    });
}

QRMIDOM_Node QRMIDOM_Node::removeChild(QRMIDOM_Node oldChild)
{
    DOMNode* const parent = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     parent->removeChild(qrm::found<DOMNode>(oldChild)));
    });
}

QRMIDOM_Node QRMIDOM_Node::appendChild(QRMIDOM_Node newChild)
{
    DOMNode* const parent = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        refuseNullOrSelf(parent, newChild);
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, parent->appendChild(newChild));
    });
}

bool QRMIDOM_Node::hasChildNodes() const
{
    return live(m_nodeImpl, QRM_SITE_HERE)->hasChildNodes();
}

QRMIDOM_Node QRMIDOM_Node::cloneNode(int deep) const
{
    const DOMNode* const node = live(m_nodeImpl, QRM_SITE_HERE);
    const auto makeClone = [&] {
        return translated(QRM_SITE_HERE, [&] {
            refuseDetachedDoctype(node);
            return qrm::clone(node, deep != 0);
        });
    };

    const DOMNode* const owner = node->getOwnerDocument();
    if (owner != nullptr && m_refCountedNodeImpl != nullptr && m_refCountedNodeImpl->getNode() == owner) {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl, makeClone());
    }
    QRMIDOM_Node result;
    Sharing::adopt(result, makeClone, QRM_SITE_HERE);
    return result;
}

void QRMIDOM_Node::normalize()
{
    qrm::normalizeTree(live(m_nodeImpl, QRM_SITE_HERE));
}

bool QRMIDOM_Node::supports(const I18NString& feature, const I18NString& version) const
{
    return live(m_nodeImpl, QRM_SITE_HERE)
        ->isSupported(Bridge::I18NStringToDOMString(feature), Bridge::I18NStringToDOMString(version));
}

I18NString QRMIDOM_Node::getNamespaceURI() const
{
    return Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNamespaceURI());
}

void QRMIDOM_Node::getNamespaceURI(I18NString& namespaceURI) const
{
    Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNamespaceURI(), namespaceURI);
}

I18NString QRMIDOM_Node::getPrefix() const
{
    return Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getPrefix());
}

void QRMIDOM_Node::getPrefix(I18NString& prefix) const
{
    Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getPrefix(), prefix);
}

I18NString QRMIDOM_Node::getLocalName() const
{
    return Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getLocalName());
}

void QRMIDOM_Node::getLocalName(I18NString& localName) const
{
    Bridge::DOMStringToI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getLocalName(), localName);
}

bool QRMIDOM_Node::matchNodeName(const I18NString& name) const
{
    return Bridge::MatchI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNodeName(), name);
}

bool QRMIDOM_Node::matchNamespaceURI(const I18NString& namespaceURI) const
{
    return Bridge::MatchI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getNamespaceURI(), namespaceURI);
}

bool QRMIDOM_Node::matchLocalName(const I18NString& localName) const
{
    return Bridge::MatchI18NString(live(m_nodeImpl, QRM_SITE_HERE)->getLocalName(), localName);
}
