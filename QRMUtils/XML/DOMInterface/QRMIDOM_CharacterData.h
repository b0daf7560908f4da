#ifndef QRMIDOM_CHARACTERDATA_H
#define QRMIDOM_CHARACTERDATA_H

#include <xercesc/dom/DOMCharacterData.hpp>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_TypedNode.h"

/// Handle on a node that carries text: a text node, a CDATA section or a comment. Offsets and counts are UTF-16 code
/// units, from 0; a count that reaches past the end means up to the end.
///
/// Operations that take an offset throw QRMIDOM_DOMException 1 when it lies beyond the length, and 7 when they would
/// change a read-only node.
class QRMIDOM_API QRMIDOM_CharacterData
    : public QRMIDOM_TypedNode<QRMIDOM_CharacterData, xercesc::DOMCharacterData>
{
public:
    using TypedNode::TypedNode;
    using TypedNode::operator=;
    /// Makes this the null handle.
    /// @throws QRMAssertError "QRM_ASSERT(nodePrt == NULL);" unless the argument is null
    QRMIDOM_CharacterData& operator=(const QRMIDOM_Node* nodePrt);

    /// The wrapped Xerces node, not the handle.
    xercesc::DOMCharacterData* operator->() const { return dom(); }

    /// The length of the text in code units.
    unsigned long getLength() const;

    /// The text; empty where there is none.
    I18NString getData() const;
    /// @overload
    void getData(I18NString& data) const;

    /// A piece of the text.
    I18NString substringData(unsigned long offset, unsigned long count) const;
    /// @overload
    void substringData(unsigned long offset, unsigned long count, I18NString& data) const;

    /// Puts text at the end.
    void appendData(const I18NString& arg);
    /// Puts text before the code unit at the offset, from 0; at the length it is put at the end.
    void insertData(unsigned long offset, const I18NString& arg);
    /// Takes out so many code units from the offset on, fewer where the text ends before.
    void deleteData(unsigned long offset, unsigned long count);
    /// Puts text in the place of so many code units from the offset on.
    void replaceData(unsigned long offset, unsigned long count, const I18NString& arg);
};

#endif
