#ifndef QRMIDOM_DOMIMPLEMENTATION_H
#define QRMIDOM_DOMIMPLEMENTATION_H

#include <xercesc/dom/DOMImplementation.hpp>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h"

class QRMIDOM_Document;

/// Handle on the DOM implementation: the maker of empty documents and document types, and the place where the library
/// is started and stopped.
///
/// Every operation that needs the implementation throws QRMAssertError "QRM_ASSERT(m_nodeImpl != NULL);" on a handle
/// without one. The factories throw QRMIDOM_DOMException 5 for an invalid name and 14 for a name and namespace that do
/// not fit together.
class QRMIDOM_API QRMIDOM_DOMImplementation
{
public:
    /// Holds nothing.
    QRMIDOM_DOMImplementation() = default;
    /// @overload
    QRMIDOM_DOMImplementation(const QRMIDOM_DOMImplementation&) = default;
    /// Holds the implementation, which belongs to Xerces.
    QRMIDOM_DOMImplementation(xercesc::DOMImplementation* wrapped) : m_nodeImpl(wrapped) {}
    virtual ~QRMIDOM_DOMImplementation();
    /// Refers to the same implementation.
    QRMIDOM_DOMImplementation& operator=(const QRMIDOM_DOMImplementation&) = default;

    /// Starts the library; to be called once before any other use, by one thread. Every handle, parser and exception
    /// has to be gone before the terminate() that belongs to it.
    static void initialize();

    /// Stops the library; to be called once after its last use.
    static void terminate();

    /// The implementation, a new handle on the same Xerces object each time.
    static QRMIDOM_DOMImplementation getInstance();

    /// Xerces' implementation, which the handle does not own; null in the null handle.
    operator xercesc::DOMImplementation*() const { return m_nodeImpl; }

    /// Whether nothing is held; for comparison with NULL only.
    /// @throws QRMAssertError "QRM_ASSERT(nullPtr == NULL);" unless the argument is null
    bool operator==(QRMIDOM_DOMImplementation* nullPtr) const;
    /// Whether the handle holds an implementation; the argument has to be null.
    bool operator!=(QRMIDOM_DOMImplementation* nullPtr) const;

    /// Whether there is such a feature in that version; an empty version stands for any.
    bool hasFeature(const I18NString& feature, const I18NString& version) const;

    /// A document type that belongs to no document. Give it to createDocument(), or release it through
    /// getDOM_NodeImpl()->release(); until then nobody owns it.
    QRMIDOM_DocumentType createDocumentType(const I18NString& qualifiedName) const;
    /// @overload
    QRMIDOM_DocumentType createDocumentType(const I18NString& qualifiedName,
                                            const I18NString& publicId) const;
    /// @overload
    QRMIDOM_DocumentType createDocumentType(const I18NString& qualifiedName, const I18NString& publicId,
                                            const I18NString& systemId) const;

    /// A document without a document element: the caller appends the root. Name and namespace are only checked to go
    /// together; an empty name is not checked.
    /// @param doctype becomes the document's; from then on the handle given shares the document. It stays as it is
    ///        when the call fails.
    /// @throws QRMIDOM_DOMException 4 for a document type that another document has
    QRMIDOM_Document createDocument() const;
    /// @overload
    QRMIDOM_Document createDocument(const I18NString& namespaceURI) const;
    /// @overload
    QRMIDOM_Document createDocument(const I18NString& namespaceURI, const I18NString& qualifiedName) const;
    /// @overload
    QRMIDOM_Document createDocument(const I18NString& namespaceURI, const I18NString& qualifiedName,
                                    const QRMIDOM_DocumentType& doctype) const;

private:
    xercesc::DOMImplementation* m_nodeImpl = nullptr;
};

#endif
