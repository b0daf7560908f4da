#ifndef QRMIDOM_PROCESSINGINSTRUCTION_H
#define QRMIDOM_PROCESSINGINSTRUCTION_H

#include <xercesc/dom/DOMProcessingInstruction.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a processing instruction. Its data is changed by setNodeValue().
class QRMIDOM_API QRMIDOM_ProcessingInstruction
    : public QRMIDOM_TypedNode<QRMIDOM_ProcessingInstruction, xercesc::DOMProcessingInstruction>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_ProcessingInstruction& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMProcessingInstruction* operator->() const { return dom(); }

    /// The first name after the opening mark.
    I18NString getTarget() const;
    /// @overload
    void getTarget(I18NString& target) const;

    /// What follows the target and white space; empty where there is nothing.
    I18NString getData() const;
    /// @overload
    void getData(I18NString& data) const;
};

#endif
