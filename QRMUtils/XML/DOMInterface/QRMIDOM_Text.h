#ifndef QRMIDOM_TEXT_H
#define QRMIDOM_TEXT_H

#include <xercesc/dom/DOMText.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_CharacterData.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a text node, or on the text of a CDATA section.
class QRMIDOM_API QRMIDOM_Text
    : public QRMIDOM_TypedNode<QRMIDOM_Text, xercesc::DOMText, QRMIDOM_CharacterData>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_Text& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMText* operator->() const { return dom(); }

    /// Breaks the node in two at the offset, in code units: this node keeps the text before it, and the rest becomes a
    /// new sibling after it, where there is a parent.
    /// @return a handle on the new node that does not share the document: keep another one while it is used
    /// @throws QRMIDOM_DOMException 1 when the offset lies beyond the length, 7 on a read-only node
    QRMIDOM_Text splitText(unsigned long offset);
};

#endif
