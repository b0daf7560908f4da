#ifndef QRMIDOM_ENTITY_H
#define QRMIDOM_ENTITY_H

#include <xercesc/dom/DOMEntity.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on an entity declaration. An internal entity has neither identifiers nor a notation.
class QRMIDOM_API QRMIDOM_Entity : public QRMIDOM_TypedNode<QRMIDOM_Entity, xercesc::DOMEntity>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Entity& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMEntity* operator->() const { return dom(); }

    /// The system identifier, as it was written; empty where there is none.
    I18NString getSystemId() const;
    /// @overload
    void getSystemId(I18NString& systemId) const;

    /// The public identifier; empty where there is none.
    I18NString getPublicId() const;
    /// @overload
    void getPublicId(I18NString& publicId) const;

    /// The notation of an unparsed entity; empty for a parsed one.
    I18NString getNotationName() const;
    /// @overload
    void getNotationName(I18NString& notationName) const;
};

#endif
