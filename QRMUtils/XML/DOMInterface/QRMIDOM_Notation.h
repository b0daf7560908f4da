#ifndef QRMIDOM_NOTATION_H
#define QRMIDOM_NOTATION_H

#include <xercesc/dom/DOMNotation.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a notation declaration.
class QRMIDOM_API QRMIDOM_Notation : public QRMIDOM_TypedNode<QRMIDOM_Notation, xercesc::DOMNotation>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Notation& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMNotation* operator->() const { return dom(); }

    /// The public identifier; empty where there is none.
    I18NString getPublicId() const;
    /// @overload
    void getPublicId(I18NString& publicId) const;

    /// The system identifier, as it was written; empty where there is none.
    I18NString getSystemId() const;
    /// @overload
    void getSystemId(I18NString& systemId) const;
};

#endif
