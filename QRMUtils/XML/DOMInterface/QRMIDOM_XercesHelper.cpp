#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"

#include <cstddef>
#include <limits>

#include <xercesc/util/XMLString.hpp>

#include "QRMCore/QRMThrowable.h"
#include "QRMCore/internal/UnitLength.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"

namespace {

/// The length in bytes, with the terminator, of a string that has units.
int byteLength(const XMLCh* source)
{
    const std::size_t bytes = (qrm::unitLength(source) + 1) * sizeof(XMLCh);
    if (bytes > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        QRMOutOfMemoryError(0, "a string of Xerces is too long for an I18NString")
            .hurl(QRM_SITE_HERE, nullptr, "QRM_THROW");
    }
    return static_cast<int>(bytes);
}

} // namespace

std::int32_t u_strlen(const unsigned short* text)
{
    std::int32_t count = 0;
    while (text[count] != 0) {
        ++count;
    }
    return count;
}

std::int32_t u_strlen(const char16_t* text)
{
    return static_cast<std::int32_t>(qrm::unitLength(text));
}

QRMIDOM_XercesHelper::~QRMIDOM_XercesHelper() = default;

I18NString QRMIDOM_XercesHelper::DOMStringToI18NString(const XMLCh* source)
{
    if (qrm::isEmpty(source)) {
        return I18NString();
    }
    return I18NString(source, byteLength(source), nullptr, nullptr);
}

void QRMIDOM_XercesHelper::DOMStringToI18NString(const XMLCh* source, I18NString& target)
{
    if (qrm::isEmpty(source)) {
        target.remove();
    } else {
        target.setTo(source, byteLength(source));
    }
}

const XMLCh* QRMIDOM_XercesHelper::I18NStringToDOMString(const I18NString& source)
{
    return source.empty() ? nullptr : source.getExternalBuffer();
}

void QRMIDOM_XercesHelper::I18NStringToDOMString(const I18NString& source, XMLCh*& target)
{
    target = const_cast<XMLCh*>(source.getExternalBuffer());
}

bool QRMIDOM_XercesHelper::MatchI18NString(const XMLCh* a, const I18NString& b)
{
    return xercesc::XMLString::equals(a, b.getExternalBuffer());
}
