#include "QRMCore/I18NString.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <ostream>
#include <string_view>
#include <utility>

#include "QRMCore/internal/Codec.h"
#include "QRMCore/internal/ConversionErrors.h"
#include "QRMCore/internal/UnitLength.h"

using qrm::Codec;
using qrm::Encoding;

namespace {

// One unit is kept for the terminator.
constexpr int kMaxLength = std::numeric_limits<int>::max() - 1;

std::u16string_view view(const I18NString& text)
{
    return {text.getExternalBuffer(), static_cast<std::size_t>(text.length())};
}

int indexOrNone(std::size_t position)
{
    return position != std::u16string_view::npos ? static_cast<int>(position) : -1;
}

int narrowed(std::size_t length)
{
    if (length > static_cast<std::size_t>(kMaxLength)) {
        qrm::throwTooLong();
    }
    return static_cast<int>(length);
}

void copyUnits(char16_t* to, const void* from, int length)
{
    std::memcpy(to, from, sizeof(char16_t) * static_cast<std::size_t>(length));
}

} // namespace

I18NString::I18NString(const char* text) : I18NString()
{
    if (text != nullptr) {
        decode(text, std::strlen(text), I18NConverter());
    }
}

I18NString::I18NString(const char16_t* text) : m_units(m_inline)
{
    set(text, text != nullptr ? narrowed(qrm::unitLength(text)) : 0);
}

I18NString::I18NString(const char* bytes, int length, const char* encoding) : I18NString()
{
    const I18NConverter converter(encoding);
    if (bytes != nullptr && length > 0) {
        decode(bytes, static_cast<std::size_t>(length), converter);
    }
}

I18NString::I18NString(const I18NString& other) : m_units(m_inline)
{
    set(other.m_units, other.m_length);
}

I18NString::I18NString(I18NString&& other) noexcept : I18NString()
{
    *this = std::move(other);
}

I18NString& I18NString::operator=(const I18NString& other)
{
    if (this != &other) {
        set(other.m_units, other.m_length);
    }
    return *this;
}

I18NString& I18NString::operator=(I18NString&& other) noexcept
{
    if (this == &other) {
        return *this;
    }
    if (other.m_length <= kInlineLength) {
        set(other.m_units, other.m_length);
    } else {
        if (m_units != m_inline) {
            delete[] m_units;
        }
        m_units = std::exchange(other.m_units, other.m_inline);
        m_length = other.m_length;
        m_capacity = std::exchange(other.m_capacity, static_cast<int>(kInlineLength));
    }
    other.remove();
    return *this;
}

I18NString& I18NString::append(const I18NString& other)
{
    const int added = other.m_length;
    if (added > kMaxLength - m_length) {
        qrm::throwTooLong();
    }
    const int length = m_length + added;
    grow(length, m_length);
    copyUnits(m_units + m_length, other.m_units, added);
    setLength(length);
    return *this;
}

int I18NString::indexOf(const I18NString& what, int from) const
{
    return indexOrNone(view(*this).find(view(what), static_cast<std::size_t>(std::max(from, 0))));
}

int I18NString::lastIndexOf(const I18NString& what) const
{
    return indexOrNone(view(*this).rfind(view(what)));
}

bool I18NString::startsWith(const I18NString& what) const
{
    return view(*this).substr(0, view(what).size()) == view(what);
}

I18NString I18NString::substring(int start, int length) const
{
    const int first = std::clamp(start, 0, m_length);
    // A piece that starts before the string is shorter by what is cut off.
    const auto end = length < 0 ? static_cast<long long>(m_length) : static_cast<long long>(start) + length;
    const int last = static_cast<int>(std::clamp<long long>(end, first, m_length));
    I18NString piece;
    piece.grow(last - first, 0);
    copyUnits(piece.m_units, m_units + first, last - first);
    piece.setLength(last - first);
    return piece;
}

int I18NString::compare(const I18NString& other) const
{
    return view(*this).compare(view(other));
}

char* I18NString::toBytes(const char* encoding, int* length, I18NAllocator allocator, void* context) const
{
    return qrm::encode(qrm::encodingNamed(encoding), m_units, static_cast<std::size_t>(m_length), length,
                       allocator, context);
}

char* I18NString::toBytes(const I18NConverter& converter, int* length, I18NAllocator allocator,
                          void* context) const
{
    return qrm::encode({static_cast<Codec>(converter.m_codec), converter.m_name}, m_units,
                       static_cast<std::size_t>(m_length), length, allocator, context);
}

std::string I18NString::toUtf8() const
{
    int length = 0;
    const std::unique_ptr<char[]> bytes(
        toBytes(static_cast<const char*>(nullptr), &length, QRMI18NStringAllocator, nullptr));
    return std::string(bytes.get(), static_cast<std::size_t>(length - 1));
}

void I18NString::setLong(const void* data, int length)
{
    if (length <= m_capacity) {
        std::memmove(m_units, data, sizeof(char16_t) * static_cast<std::size_t>(length));
    } else {
        // The data may lie in the old storage, which stays until it has been copied.
        const std::size_t room = static_cast<std::size_t>(length) + 1;
        auto* const units = new char16_t[room];
        copyUnits(units, data, length);
        if (m_units != m_inline) {
            delete[] m_units;
        }
        m_units = units;
        m_capacity = length;
    }
    setLength(length);
}

void I18NString::setChecked(const void* data, int length, I18NErrorCallback callback, void* context)
{
    std::u16string units(static_cast<std::size_t>(length), u'\0');
    copyUnits(units.data(), data, length);
    std::u16string checked;
    checked.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        char32_t character = qrm::characterAt(units.data(), units.size(), i);
        i += character > 0xFFFF ? 2 : 1;
        if (qrm::isSurrogate(character)) {
            character = callback(context, static_cast<char16_t>(character));
        }
        if (character > 0xFFFF) {
            checked += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            checked += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            checked += static_cast<char16_t>(character);
        }
    }
    setLong(checked.data(), narrowed(checked.size()));
}

/// Makes room for that many units, more than asked so that appending stays cheap, and keeps the first `kept` of them.
void I18NString::grow(int length, int kept)
{
    if (length <= m_capacity) {
        return;
    }
    const int roomier = m_capacity > kMaxLength / 2 ? kMaxLength : 2 * m_capacity;
    const int capacity = kept > 0 ? std::max(length, roomier) : length;
    auto* const units = new char16_t[static_cast<std::size_t>(capacity) + 1];
    copyUnits(units, m_units, kept);
    if (m_units != m_inline) {
        delete[] m_units;
    }
    m_units = units;
    m_capacity = capacity;
}

void I18NString::decode(const char* bytes, std::size_t count, const I18NConverter& converter)
{
    const Encoding encoding = {static_cast<Codec>(converter.m_codec), converter.m_name};
    std::size_t length = count;
    do {
        grow(narrowed(length), 0);
        length = qrm::decode(encoding, bytes, count, m_units, static_cast<std::size_t>(m_capacity));
    } while (length > static_cast<std::size_t>(m_capacity));
    setLength(static_cast<int>(length));
}

I18NString operator+(const I18NString& a, const I18NString& b)
{
    I18NString sum(a);
    sum += b;
    return sum;
}

std::ostream& operator<<(std::ostream& stream, const I18NString& text)
{
    return stream << text.toUtf8();
}
