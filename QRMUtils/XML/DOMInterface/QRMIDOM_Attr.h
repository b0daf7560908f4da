#ifndef QRMIDOM_ATTR_H
#define QRMIDOM_ATTR_H

#include <xercesc/dom/DOMAttr.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

class QRMIDOM_Element;

/// Handle on an attribute. Its value is changed by setNodeValue() or through its element.
class QRMIDOM_API QRMIDOM_Attr : public QRMIDOM_TypedNode<QRMIDOM_Attr, xercesc::DOMAttr>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Attr& operator=(const QRMIDOM_Node* nodePrt);

    /// The qualified name.
    I18NString getName() const;
    /// @overload
    void getName(I18NString& name) const;

    /// Whether the attribute stood in the document or was set by a caller; false for a default of the DTD or schema.
    bool getSpecified() const;

    /// The value; empty where there is none.
    I18NString getValue() const;
    /// @overload
    void getValue(I18NString& value) const;

    /// The element that has the attribute; the null handle while there is none.
    QRMIDOM_Element getOwnerElement() const;
};

#endif
