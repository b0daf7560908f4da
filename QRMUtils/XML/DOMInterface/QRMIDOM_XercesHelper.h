#ifndef QRMIDOM_XERCESHELPER_H
#define QRMIDOM_XERCESHELPER_H

#include <cstdint>

#include <xercesc/util/XercesDefs.hpp>

#include "QRMCore/I18NString.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Api.h"

/// The number of 16-bit units before the first zero unit. The pointer must not be null.
QRMIDOM_API std::int32_t u_strlen(const unsigned short* text);
QRMIDOM_API std::int32_t u_strlen(const char16_t* text);

/// Where the strings of the product family and those of Xerces meet. Both are UTF-16, so nothing is transcoded: a
/// string of Xerces is copied, and one of ours is lent out.
class QRMIDOM_API QRMIDOM_XercesHelper
{
public:
    QRMIDOM_XercesHelper() = default;
    virtual ~QRMIDOM_XercesHelper();

    /// A copy of the zero-terminated string; empty for null.
    static I18NString DOMStringToI18NString(const XMLCh* source);
    /// Overwrites the target; null makes it empty.
    static void DOMStringToI18NString(const XMLCh* source, I18NString& target);

    /// The string's own units, valid while it lives unchanged; null for an empty string.
    static const XMLCh* I18NStringToDOMString(const I18NString& source);
    /// The same, but an empty string gives a pointer to its zero unit: for the places where Xerces accepts no null.
    /// Nothing may be written through it.
    static void I18NStringToDOMString(const I18NString& source, XMLCh*& target);

    /// Whether both are equal, unit by unit; null equals empty.
    static bool MatchI18NString(const XMLCh* a, const I18NString& b);
};

#endif
