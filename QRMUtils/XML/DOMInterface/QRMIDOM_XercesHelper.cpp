#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"

#include <cstddef>
#include <limits>

#include <xercesc/util/XMLString.hpp>

#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

#if defined(__SSE2__)
/// Reads whole aligned blocks, which may reach past the terminator but never into another page.
__attribute__((no_sanitize("address"))) std::size_t countUnits(const char16_t* text)
{
    constexpr std::uintptr_t kBlock = sizeof(__m128i);
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    const unsigned int skipped = static_cast<unsigned int>(address % kBlock);
    const auto* block = reinterpret_cast<const __m128i*>(address - skipped);
    const __m128i zero = _mm_setzero_si128();

    auto zeros = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(block), zero)));
    zeros >>= skipped;
    if (zeros != 0) {
        return static_cast<unsigned int>(__builtin_ctz(zeros)) / sizeof(char16_t);
    }
    do {
        ++block;
        zeros = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(block), zero)));
    } while (zeros == 0);
    const std::size_t bytes =
        reinterpret_cast<std::uintptr_t>(block) - address + static_cast<unsigned int>(__builtin_ctz(zeros));
    return bytes / sizeof(char16_t);
}
#else
std::size_t countUnits(const char16_t* text)
{
    return xercesc::XMLString::stringLen(text);
}
#endif

/// The length in bytes, with the terminator, of a string that has units.
int byteLength(const XMLCh* source)
{
    const std::size_t bytes = (countUnits(source) + 1) * sizeof(XMLCh);
    if (bytes > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        QRMOutOfMemoryError(0, "a string of Xerces is too long for an I18NString")
            .hurl(QRM_SITE_HERE, nullptr, "QRM_THROW");
    }
    return static_cast<int>(bytes);
}

bool isEmpty(const XMLCh* source)
{
    return source == nullptr || *source == 0;
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
    return static_cast<std::int32_t>(countUnits(text));
}

QRMIDOM_XercesHelper::~QRMIDOM_XercesHelper() = default;

I18NString QRMIDOM_XercesHelper::DOMStringToI18NString(const XMLCh* source)
{
    if (isEmpty(source)) {
        return I18NString();
    }
    return I18NString(source, byteLength(source), nullptr, nullptr);
}

void QRMIDOM_XercesHelper::DOMStringToI18NString(const XMLCh* source, I18NString& target)
{
    if (isEmpty(source)) {
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
