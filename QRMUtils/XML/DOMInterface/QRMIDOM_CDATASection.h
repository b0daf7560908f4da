#ifndef QRMIDOM_CDATASECTION_H
#define QRMIDOM_CDATASECTION_H

#include <xercesc/dom/DOMCDATASection.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Text.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a CDATA section.
class QRMIDOM_API QRMIDOM_CDATASection
    : public QRMIDOM_TypedNode<QRMIDOM_CDATASection, xercesc::DOMCDATASection, QRMIDOM_Text>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_CDATASection& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMCDATASection* operator->() const { return dom(); }
};

#endif
