#include "QRMCore/I18NConverter.h"

#include <algorithm>
#include <cstring>

#include "QRMCore/I18NString.h"
#include "QRMCore/internal/Codec.h"
#include "QRMCore/internal/ConversionErrors.h"
#include "QRMCore/internal/UnitLength.h"

using qrm::Codec;
using qrm::Encoding;

void* QRMI18NStringAllocator(void* /*context*/, std::size_t bytes)
{
    return new char[bytes];
}

I18NConverter::I18NConverter(const char* encoding) : m_isDefault(encoding == nullptr)
{
    const Encoding resolved = qrm::encodingNamed(encoding);
    const std::size_t length = std::strlen(resolved.name);
    if (length > kMaxNameLength) {
        qrm::throwUnknownEncoding(encoding);
    }
    m_codec = static_cast<int>(resolved.codec);
    std::memcpy(m_name, resolved.name, length + 1);
}

char* I18NConverter::fromUnicode(const char16_t* source, I18NAllocator allocator, void* context) const
{
    const char16_t* const units = source != nullptr ? source : u"";
    return qrm::encode({static_cast<Codec>(m_codec), m_name}, units, qrm::unitLength(units), nullptr,
                       allocator, context);
}

char* I18NConverter::fromUnicodeIfExpressible(const char16_t* source, I18NAllocator allocator,
                                              void* context) const
{
    const char16_t* const units = source != nullptr ? source : u"";
    return qrm::tryEncode({static_cast<Codec>(m_codec), m_name}, units, qrm::unitLength(units), nullptr,
                          allocator, context);
}

char32_t I18NConverter::lastDirect() const
{
    switch (static_cast<Codec>(m_codec)) {
    case Codec::kUtf8: return 0x10FFFF;
    case Codec::kLatin1: return 0xFF;
    case Codec::kAscii: return 0x7F;
    default: return 0;
    }
}

int I18NConverter::sizeofLegacyNull() const
{
    return qrm::nullSize({static_cast<Codec>(m_codec), m_name});
}

int I18NConverter::firstUnexpressible(const I18NString& text, int from) const
{
    const auto length = static_cast<std::size_t>(text.length());
    const std::size_t index =
        qrm::firstUnexpressible({static_cast<Codec>(m_codec), m_name}, text.getExternalBuffer(), length,
                                static_cast<std::size_t>(std::max(from, 0)));
    return index < length ? static_cast<int>(index) : -1;
}
