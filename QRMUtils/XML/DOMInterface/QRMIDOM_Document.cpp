#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_CDATASection.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Comment.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentFragment.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Element.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_EntityReference.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_ProcessingInstruction.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Text.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Iterators.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"
#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::sharing;
using qrm::translated;
using xercesc::XMLUni;

namespace {

struct Parameter
{
    const XMLCh* name;
    bool value;
};

// In this order. The names are those of Xerces, which misspells the third.
const Parameter kNormalForm[] = {
    {XMLUni::fgDOMCDATASections, false},
    {XMLUni::fgDOMComments, false},
    {XMLUni::fgDOMWRTDiscardDefaultContent, false},
    {XMLUni::fgDOMEntities, true},
    {XMLUni::fgDOMNamespaces, false},
};

/// Xerces sets a name before it checks it, so a name that is refused has to be taken back.
void rename(xercesc::DOMDocument* document, xercesc::DOMNode* node, const XMLCh* namespaceURI,
            const XMLCh* qualifiedName)
{
    const XMLCh* const formerURI = node->getNamespaceURI();
    const XMLCh* const formerName = node->getNodeName();
    try {
        document->renameNode(node, namespaceURI, qualifiedName);
    } catch (const xercesc::DOMException&) {
        qrm::silently(
            [&] { document->renameNode(node, formerURI != nullptr ? formerURI : u"", formerName); });
        throw;
    }
}

xercesc::DOMNodeFilter* adapterOf(const QRMIDOM_NodeFilter* filter)
{
    return filter != nullptr ? filter->getNodeFilter() : nullptr;
}

} // namespace

QRMIDOM_Document::QRMIDOM_Document(xercesc::DOMDocument* document)
{
    if (document != nullptr) {
        qrm::Sharing::own(m_refCountedNodeImpl, document, QRM_SITE_HERE);
        m_nodeImpl = document;
    }
}

QRMIDOM_Document& QRMIDOM_Document::operator=(const QRMIDOM_Node* nodePrt)
{
    QRM_ASSERT(nodePrt == NULL);
    QRMIDOM_Node::operator=(nodePrt);
    return *this;
}

QRMIDOM_DocumentType QRMIDOM_Document::getDoctype() const
{
    return sharing<QRMIDOM_DocumentType>(m_refCountedNodeImpl, live(dom(), QRM_SITE_HERE)->getDoctype());
}

QRMIDOM_DOMImplementation QRMIDOM_Document::getDOMImplementation() const
{
    return QRMIDOM_DOMImplementation(live(dom(), QRM_SITE_HERE)->getImplementation());
}

QRMIDOM_Element QRMIDOM_Document::getDocumentElement() const
{
    return sharing<QRMIDOM_Element>(m_refCountedNodeImpl, live(dom(), QRM_SITE_HERE)->getDocumentElement());
}

QRMIDOM_Element QRMIDOM_Document::createElement(const I18NString& tagName)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Element>(m_refCountedNodeImpl,
                                        document->createElement(Bridge::I18NStringToDOMString(tagName)));
    });
}

QRMIDOM_DocumentFragment QRMIDOM_Document::createDocumentFragment()
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_DocumentFragment>(m_refCountedNodeImpl, document->createDocumentFragment());
    });
}

QRMIDOM_Text QRMIDOM_Document::createTextNode(const I18NString& data)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Text>(m_refCountedNodeImpl,
                                     document->createTextNode(Bridge::I18NStringToDOMString(data)));
    });
}

QRMIDOM_Comment QRMIDOM_Document::createComment(const I18NString& data)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Comment>(m_refCountedNodeImpl,
                                        document->createComment(Bridge::I18NStringToDOMString(data)));
    });
}

QRMIDOM_CDATASection QRMIDOM_Document::createCDATASection(const I18NString& data)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_CDATASection>(
            m_refCountedNodeImpl, document->createCDATASection(Bridge::I18NStringToDOMString(data)));
    });
}

QRMIDOM_ProcessingInstruction QRMIDOM_Document::createProcessingInstruction(const I18NString& target,
                                                                            const I18NString& data)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_ProcessingInstruction>(
            m_refCountedNodeImpl, document->createProcessingInstruction(Bridge::I18NStringToDOMString(target),
                                                                        Bridge::I18NStringToDOMString(data)));
    });
}

QRMIDOM_Attr QRMIDOM_Document::createAttribute(const I18NString& name)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Attr>(m_refCountedNodeImpl,
                                     document->createAttribute(Bridge::I18NStringToDOMString(name)));
    });
}

QRMIDOM_EntityReference QRMIDOM_Document::createEntityReference(const I18NString& name)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_EntityReference>(
            m_refCountedNodeImpl, qrm::makeEntityReference(document, Bridge::I18NStringToDOMString(name)));
    });
}

QRMIDOM_Element QRMIDOM_Document::createElementNS(const I18NString& namespaceURI,
                                                  const I18NString& qualifiedName)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Element>(
            m_refCountedNodeImpl, document->createElementNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                            Bridge::I18NStringToDOMString(qualifiedName)));
    });
}

QRMIDOM_Attr QRMIDOM_Document::createAttributeNS(const I18NString& namespaceURI,
                                                 const I18NString& qualifiedName)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Attr>(
            m_refCountedNodeImpl, document->createAttributeNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                              Bridge::I18NStringToDOMString(qualifiedName)));
    });
}

QRMIDOM_NodeList QRMIDOM_Document::getElementsByTagName(const I18NString& tagName) const
{
    return sharing<QRMIDOM_NodeList>(
        m_refCountedNodeImpl,
        live(dom(), QRM_SITE_HERE)->getElementsByTagName(Bridge::I18NStringToDOMString(tagName)));
}

QRMIDOM_NodeList QRMIDOM_Document::getElementsByTagNameNS(const I18NString& namespaceURI,
                                                          const I18NString& localName) const
{
    return sharing<QRMIDOM_NodeList>(m_refCountedNodeImpl,
                                     live(dom(), QRM_SITE_HERE)
                                         ->getElementsByTagNameNS(Bridge::I18NStringToDOMString(namespaceURI),
                                                                  Bridge::I18NStringToDOMString(localName)));
}

QRMIDOM_Element QRMIDOM_Document::getElementById(const I18NString& elementId) const
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Element>(m_refCountedNodeImpl,
                                        document->getElementById(Bridge::I18NStringToDOMString(elementId)));
    });
}

QRMIDOM_Node QRMIDOM_Document::importNode(QRMIDOM_Node& importedNode, int deep)
{
    QRM_ASSERT(importedNode != NULL);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_Node>(m_refCountedNodeImpl,
                                     qrm::import(live(dom(), QRM_SITE_HERE), importedNode, deep != 0));
    });
}

QRMIDOM_NodeIterator QRMIDOM_Document::createNodeIterator(QRMIDOM_Node root, unsigned long whatToShow,
                                                          QRMIDOM_NodeFilter* filter,
                                                          int entityReferenceExpansion)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_NodeIterator>(
            m_refCountedNodeImpl,
            qrm::makeIterator(document, root, whatToShow, adapterOf(filter), entityReferenceExpansion != 0));
    });
}

QRMIDOM_TreeWalker QRMIDOM_Document::createTreeWalker(QRMIDOM_Node root, unsigned long whatToShow,
                                                      QRMIDOM_NodeFilter* filter,
                                                      int entityReferenceExpansion)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return sharing<QRMIDOM_TreeWalker>(
            m_refCountedNodeImpl,
            document->createTreeWalker(root, whatToShow, adapterOf(filter), entityReferenceExpansion != 0));
    });
}

QRMIDOM_Node QRMIDOM_Document::renameNode(QRMIDOM_Node& n, const I18NString& namespaceURI,
                                          const I18NString& qualifiedName)
{
    auto* const document = live(dom(), QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        rename(document, qrm::found<xercesc::DOMNode>(n), qrm::neverNull(namespaceURI),
               qrm::neverNull(qualifiedName));
        return n;
    });
}

void QRMIDOM_Document::normalizeDocument()
{
    QRM_ASSERT(this->m_nodeImpl != NULL);
    translated(QRM_SITE_HERE, [&] {
        xercesc::DOMConfiguration* const domConfiguration = dom()->getDOMConfig();
        QRM_ASSERT(domConfiguration != NULL);
        for (const Parameter& parameter : kNormalForm) {
            domConfiguration->setParameter(parameter.name, parameter.value);
        }
        qrm::normalizeWholeDocument(dom());
    });
}
