#ifndef QRMIDOM_DOCUMENTTYPE_H
#define QRMIDOM_DOCUMENTTYPE_H

#include <xercesc/dom/DOMDocumentType.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

class QRMIDOM_NamedNodeMap;

/// Handle on a document type declaration.
class QRMIDOM_API QRMIDOM_DocumentType
    : public QRMIDOM_TypedNode<QRMIDOM_DocumentType, xercesc::DOMDocumentType>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_DocumentType& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMDocumentType* operator->() const { return dom(); }

    /// The name of the document element that the declaration gives.
    I18NString getName() const;
    /// @overload
    void getName(I18NString& name) const;

    /// The general entities, internal and external, that the declaration gives; never the null map.
    QRMIDOM_NamedNodeMap getEntities() const;

    /// The notations that the declaration gives; never the null map.
    QRMIDOM_NamedNodeMap getNotations() const;

    /// The public identifier of the external subset; empty where there is none.
    I18NString getPublicId() const;
    /// @overload
    void getPublicId(I18NString& publicId) const;

    /// The system identifier of the external subset, as it was written; empty where there is none.
    I18NString getSystemId() const;
    /// @overload
    void getSystemId(I18NString& systemId) const;

    /// The internal subset as text, put together again by the parser, without the brackets; empty where there is none.
    I18NString getInternalSubset() const;
    /// @overload
    void getInternalSubset(I18NString& internalSubset) const;
};

#endif
