#ifndef QRMIDOM_INTERNAL_LINKINGPARSER_H
#define QRMIDOM_INTERNAL_LINKINGPARSER_H

#include <xercesc/dom/impl/DOMDocumentTypeImpl.hpp>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLBufferMgr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUniDefs.hpp>

#include "QRMUtils/XML/DOMInterface/internal/Links.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"
#include "QRMUtils/XML/DOMInterface/internal/Trees.h"

namespace qrm {

/// A DOM parser of Xerces that links the nodes of usual content itself: elements, their attributes, and text. Xerces
/// finds the link fields of a node by dynamic_cast, up to eight times a node, which takes half of the time of a parse;
/// here the type of a node tells where they are. The nodes are Xerces' own, and the tree is the same.
///
/// Everything else is left to Xerces: the document element, elements with declared attributes, schema information,
/// CDATA sections, comments, entity references, errors, and documents without namespaces. But what Xerces does at the
/// end of references and documents by calling itself for each level of an entity is done without that here.
///
/// @tparam Base derives from xercesc::AbstractDOMParser
template <class Base>
class LinkingParser : public Base
{
public:
    using Base::Base;

    /// Whether the parser links nodes itself; it does at first.
    void setLinks(bool links) { m_links = links; }
    bool links() const { return m_links; }

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override
    {
        xercesc::DOMElementImpl* const parent = currentElement();
        if (parent == nullptr || this->fCreateSchemaInfo || !this->fScanner->getDoNamespaces()
            || hasDefaults(declaration)) {
            Base::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
            return;
        }
        auto* const element =
            static_cast<xercesc::DOMElementImpl*>(makeElement(declaration.getBaseName(), uriId, prefix));
        if (attributeCount != 0) {
            element->fAttributes->reserve(attributeCount);
            for (XMLSize_t i = 0; i < attributeCount; ++i) {
                addAttribute(*element, *attributes.elementAt(i));
            }
        }
        appendLast(parent->fParent, *element);
        this->fCurrentParent = element;
        this->fCurrentNode = element;
        if (isEmpty) {
            endElement(declaration, uriId, isRoot, prefix);
        }
    }

    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override
    {
        xercesc::DOMElementImpl* const element = currentElement();
        if (element == nullptr || !element->fNode.isOwned() || this->fDoXInclude) {
            Base::endElement(declaration, uriId, isRoot, prefix);
            return;
        }
        this->fCurrentNode = element;
        this->fCurrentParent = element->fNode.fOwnerNode;
        if (this->fCurrentParent == this->fDocument) {
            this->fWithinElement = false;
        }
    }

    void docCharacters(const XMLCh* characters, XMLSize_t length, bool isCdata) override
    {
        if (m_links && !isCdata && this->fWithinElement) {
            if (this->fCurrentNode->getNodeType() == xercesc::DOMNode::TEXT_NODE) {
                static_cast<xercesc::DOMTextImpl*>(this->fCurrentNode)->appendDataFast(characters, length);
                return;
            }
            if (xercesc::DOMElementImpl* const parent = currentElement()) {
                auto* const text = static_cast<xercesc::DOMTextImpl*>(this->createText(characters, length));
                appendLast(parent->fParent, *text);
                this->fCurrentNode = text;
                return;
            }
        }
        Base::docCharacters(characters, length, isCdata);
    }

    void endDocument() override
    {
        this->fDocument->setErrorChecking(true);
        if (this->fDocumentType != nullptr && this->fScanner->getDoNamespaces()) {
            completeDoctype(this->fDocumentType); // which in Xerces calls itself for each level of an entity
        }
    }

    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override
    {
        xercesc::DOMNode* const reference = this->fCurrentParent;
        xercesc::DOMNode* const parent = parentOf(reference);
        if (reference->getNodeType() != xercesc::DOMNode::ENTITY_REFERENCE_NODE || parent == nullptr) {
            Base::endEntityReference(declaration);
            return;
        }
        this->fCurrentNode = reference;
        this->fCurrentParent = parent;
        makeReadOnly(reference); // which in Xerces calls itself for each level of the content
    }

private:
    /// The element that content goes to; null where that is something else, or left to Xerces.
    xercesc::DOMElementImpl* currentElement() const
    {
        return m_links && this->fCurrentParent->getNodeType() == xercesc::DOMNode::ELEMENT_NODE
                   ? static_cast<xercesc::DOMElementImpl*>(this->fCurrentParent)
                   : nullptr;
    }

    /// Whether attributes of the element are declared with defaults. Makes all that are declared ready for the next
    /// element, as Xerces does, unless it will do so itself.
    static bool hasDefaults(const xercesc::XMLElementDecl& declaration)
    {
        if (!declaration.hasAttDefs()) {
            return false;
        }
        xercesc::XMLAttDefList& declared = declaration.getAttDefList();
        const XMLSize_t count = declared.getAttDefCount();
        for (XMLSize_t i = 0; i < count; ++i) {
            const xercesc::XMLAttDef::DefAttTypes type = declared.getAttDef(i).getDefaultType();
            if (type == xercesc::XMLAttDef::Default || type == xercesc::XMLAttDef::Fixed) {
                return true;
            }
        }
        for (XMLSize_t i = 0; i < count; ++i) {
            declared.getAttDef(i).reset();
        }
        return false;
    }

    xercesc::DOMElement* makeElement(const XMLCh* localName, unsigned int uriId, const XMLCh* prefix)
    {
        const XMLCh* const uri = uriText(uriId);
        if (uri == nullptr || isEmpty(prefix)) {
            return this->createElementNS(uri, nullptr, localName, localName);
        }
        xercesc::XMLBufBid qualifiedName(&this->fBufMgr);
        qualifiedName.set(prefix);
        qualifiedName.append(xercesc::chColon);
        qualifiedName.append(localName);
        return this->createElementNS(uri, prefix, localName, qualifiedName.getRawBuffer());
    }

    /// The URI of that number, null for none.
    const XMLCh* uriText(unsigned int uriId) const
    {
        return uriId != this->fScanner->getEmptyNamespaceId() ? this->fScanner->getURIText(uriId) : nullptr;
    }

    void addAttribute(xercesc::DOMElementImpl& element, const xercesc::XMLAttr& given)
    {
        const XMLCh* const prefix = given.getPrefix();
        const bool isDefaultDeclaration =
            isEmpty(prefix) && xercesc::XMLString::equals(given.getName(), xercesc::XMLUni::fgXMLNSString);
        const unsigned int uriId =
            isDefaultDeclaration ? this->fScanner->getXMLNSNamespaceId() : given.getURIId();
        auto* const attribute = static_cast<xercesc::DOMAttrImpl*>(
            this->createAttrNS(uriText(uriId), prefix, given.getName(), given.getQName()));
        element.fAttributes->setNamedItemNSFast(attribute);
        setValue(*attribute, given.getValue());
        if (given.getType() == xercesc::XMLAttDef::ID) {
            if (this->fDocument->fNodeIDMap == nullptr) {
                this->fDocument->fNodeIDMap =
                    new (this->fDocument) xercesc::DOMNodeIDMap(500, this->fDocument);
            }
            this->fDocument->fNodeIDMap->add(attribute);
            attribute->fNode.isIdAttr(true);
        }
        attribute->fNode.isSpecified(given.getSpecified());
    }

    void setValue(xercesc::DOMAttrImpl& attribute, const XMLCh* value)
    {
        if (value != nullptr) {
            appendFirst(attribute.fParent, *static_cast<xercesc::DOMTextImpl*>(this->createText(
                                               value, xercesc::XMLString::stringLen(value))));
        }
    }

    bool m_links = true;
};

} // namespace qrm

#endif
