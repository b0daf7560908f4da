#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h"

#include <memory>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/NetAccessor.h"
#include "QRMUtils/XML/DOMInterface/internal/Sharing.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"

using Bridge = QRMIDOM_XercesHelper;
using qrm::live;
using qrm::translated;
using xercesc::DOMNode;
using xercesc::XMLPlatformUtils;

namespace {

// Sizes of the blocks from which a document takes its memory, in bytes. The first two are those of Xerces. Pieces
// larger than the third get a block of their own in one list that Xerces walks when they are given back: with its own
// limit of 256 bytes, long texts that are broken by references parse fifty times slower.
constexpr XMLSize_t kInitialHeapBlock = 0x4000;
constexpr XMLSize_t kMaxHeapBlock = 0x80000;
constexpr XMLSize_t kMaxPieceInBlock = 0x4000;

struct ReleaseString
{
    void operator()(XMLCh* text) const { xercesc::XMLString::release(&text); }
};

/// Callers get their document without a document element and append their own.
void removeDocumentElement(xercesc::DOMDocument* document)
{
    DOMNode* child = document->getFirstChild();
    while (child != nullptr && child->getNodeType() != DOMNode::ELEMENT_NODE) {
        child = child->getNextSibling();
    }
    if (child != nullptr) {
        document->removeChild(child);
    }
}

} // namespace

QRMIDOM_DOMImplementation::~QRMIDOM_DOMImplementation() = default;

void QRMIDOM_DOMImplementation::initialize()
{
    XMLPlatformUtils::Initialize(kInitialHeapBlock, kMaxHeapBlock, kMaxPieceInBlock,
                                 xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr, nullptr);
    qrm::installNetAccessor();
}

void QRMIDOM_DOMImplementation::terminate()
{
    XMLPlatformUtils::Terminate();
}

QRMIDOM_DOMImplementation QRMIDOM_DOMImplementation::getInstance()
{
    return QRMIDOM_DOMImplementation(xercesc::DOMImplementation::getImplementation());
}

bool QRMIDOM_DOMImplementation::operator==(QRMIDOM_DOMImplementation* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl == nullptr;
}

bool QRMIDOM_DOMImplementation::operator!=(QRMIDOM_DOMImplementation* nullPtr) const
{
    QRM_ASSERT(nullPtr == NULL);
    return m_nodeImpl != nullptr;
}

bool QRMIDOM_DOMImplementation::hasFeature(const I18NString& feature, const I18NString& version) const
{
    return live(m_nodeImpl, QRM_SITE_HERE)
        ->hasFeature(Bridge::I18NStringToDOMString(feature), Bridge::I18NStringToDOMString(version));
}

QRMIDOM_DocumentType QRMIDOM_DOMImplementation::createDocumentType(const I18NString& qualifiedName) const
{
    return createDocumentType(qualifiedName, "", "");
}

QRMIDOM_DocumentType QRMIDOM_DOMImplementation::createDocumentType(const I18NString& qualifiedName,
                                                                   const I18NString& publicId) const
{
    return createDocumentType(qualifiedName, publicId, "");
}

QRMIDOM_DocumentType QRMIDOM_DOMImplementation::createDocumentType(const I18NString& qualifiedName,
                                                                   const I18NString& publicId,
                                                                   const I18NString& systemId) const
{
    auto* const implementation = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        return QRMIDOM_DocumentType(implementation->createDocumentType(
            qrm::neverNull(qualifiedName), Bridge::I18NStringToDOMString(publicId),
            Bridge::I18NStringToDOMString(systemId)));
    });
}

QRMIDOM_Document QRMIDOM_DOMImplementation::createDocument() const
{
    return createDocument("", "", QRMIDOM_DocumentType());
}

QRMIDOM_Document QRMIDOM_DOMImplementation::createDocument(const I18NString& namespaceURI) const
{
    return createDocument(namespaceURI, "", QRMIDOM_DocumentType());
}

QRMIDOM_Document QRMIDOM_DOMImplementation::createDocument(const I18NString& namespaceURI,
                                                           const I18NString& qualifiedName) const
{
    return createDocument(namespaceURI, qualifiedName, QRMIDOM_DocumentType());
}

QRMIDOM_Document QRMIDOM_DOMImplementation::createDocument(const I18NString& namespaceURI,
                                                           const I18NString& qualifiedName,
                                                           const QRMIDOM_DocumentType& doctype) const
{
    auto* const implementation = live(m_nodeImpl, QRM_SITE_HERE);
    return translated(QRM_SITE_HERE, [&] {
        std::unique_ptr<XMLCh, ReleaseString> dummy;
        const XMLCh* name = Bridge::I18NStringToDOMString(qualifiedName);
        if (name == nullptr) {
            dummy.reset(xercesc::XMLString::replicate(u"DUMMY"));
            name = dummy.get();
        }
        const XMLCh* const ns = Bridge::I18NStringToDOMString(namespaceURI);
        auto* const manager = XMLPlatformUtils::fgMemoryManager;
        xercesc::DOMDocumentType* const wrappedDoctype = doctype;
        if (wrappedDoctype != nullptr) {
            // A name that is refused after the document type has been tied to the new document would leave the
            // document type with pointers into a document that is gone.
            implementation->createDocument(ns, name, nullptr, manager)->release();
        }
        QRMIDOM_Document document;
        qrm::Sharing::adopt(
            document, [&] { return implementation->createDocument(ns, name, wrappedDoctype, manager); },
            QRM_SITE_HERE);
        qrm::Sharing::shareInstead(const_cast<QRMIDOM_DocumentType&>(doctype), document);
        removeDocumentElement(document);
        return document;
    });
}
