#ifndef QRMIDOM_INTERNAL_STRINGS_H
#define QRMIDOM_INTERNAL_STRINGS_H

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"

namespace qrm {

/// Whether a string of Xerces has no units, or is null.
inline bool isEmpty(const XMLCh* text)
{
    return text == nullptr || *text == 0;
}

/// The string's units for the places where Xerces would follow a null pointer; an empty string gives no null.
inline const XMLCh* neverNull(const I18NString& text)
{
    XMLCh* units = nullptr;
    QRMIDOM_XercesHelper::I18NStringToDOMString(text, units);
    return units;
}

} // namespace qrm

#endif
