#ifndef I18NSTRING_H
#define I18NSTRING_H

#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "QRMCore/I18NConverter.h"
#include "QRMCore/QRMCore_Api.h"

/// A Unicode string: a value of UTF-16 code units (char16_t) with a zero unit after the last one. Lengths and indexes
/// are counts of code units; "not found" is -1. Strings of up to 15 units need no memory from the heap. Zero units and
/// lone surrogates may be part of it.
///
/// Operations that make a string longer throw std::bad_alloc, or QRMOutOfMemoryError 0 beyond 2^31 - 2 units, and leave
/// the string as it was.
class QRMCORE_API I18NString
{
public:
    /// The empty string.
    I18NString() noexcept : m_units(m_inline) { m_inline[0] = 0; }

    /// From NUL-terminated UTF-8; null is empty.
    /// @throws I18NConversionError for ill-formed bytes
    I18NString(const char* text);

    /// From NUL-terminated UTF-16; null is empty.
    I18NString(const char16_t* text);

    /// From bytes in a named encoding; see I18NConverter for the names. Null bytes or a length below 1 give the empty
    /// string.
    /// @throws I18NConversionError for an unknown name and for ill-formed bytes
    I18NString(const char* bytes, int length, const char* encoding);

    /// From UTF-16 units. One zero unit at the end is taken for the terminator, an odd last byte is ignored, null data
    /// or a length below 1 is empty.
    /// @param callback asked for a replacement of each lone surrogate; null keeps them
    I18NString(const void* data, int lengthInBytes, I18NErrorCallback callback, void* context)
        : m_units(m_inline)
    {
        const int length = unitCount(data, lengthInBytes);
        if (callback != nullptr) {
            setChecked(data, length, callback, context);
        } else {
            set(data, length);
        }
    }

    /// @overload
    I18NString(const I18NString& other);
    /// Leaves the other string empty.
    I18NString(I18NString&& other) noexcept;
    ~I18NString()
    {
        if (m_units != m_inline) {
            delete[] m_units;
        }
    }

    /// Copies the text.
    I18NString& operator=(const I18NString& other);
    /// @overload
    I18NString& operator=(I18NString&& other) noexcept;

    /// Replaces the contents by UTF-16 units, as the constructor from raw data takes them. The data may be part of this
    /// string.
    void setTo(const void* data, int lengthInBytes) { set(data, unitCount(data, lengthInBytes)); }
    /// @overload
    void setTo(const I18NString& other) { *this = other; }

    /// Makes the string empty.
    void remove() { setLength(0); }

    /// Whether there are no code units.
    bool empty() const { return m_length == 0; }
    /// The number of UTF-16 code units, without the terminator.
    int length() const { return m_length; }

    /// The units with a zero unit after them, valid until the string changes; never null.
    const char16_t* getExternalBuffer() const { return m_units; }

    /// The unit at the index; 0 out of range.
    char16_t charAt(int index) const { return index >= 0 && index < m_length ? m_units[index] : char16_t(0); }

    /// Puts the other string, which may be this one, at the end.
    I18NString& append(const I18NString& other);
    /// The same as append().
    I18NString& operator+=(const I18NString& other) { return append(other); }

    /// The first index from `from` on at which the other string stands; -1 where it does not. A negative start is 0.
    /// The empty string stands everywhere up to the length.
    int indexOf(const I18NString& what, int from = 0) const;

    /// The last index at which the other string stands; -1 where it does not.
    int lastIndexOf(const I18NString& what) const;

    /// Whether the first code units are those of the other string; every string starts with the empty one.
    bool startsWith(const I18NString& what) const;

    /// A piece, clipped to the string.
    /// @param length -1 means up to the end
    I18NString substring(int start, int length = -1) const;

    /// Below 0, 0 or above 0, by code unit.
    int compare(const I18NString& other) const;

    /// The text in an encoding, as memory from the allocator ended by the encoding's own null.
    /// @param encoding see I18NConverter for the names; null is UTF-8
    /// @param length where not null, gets the number of bytes, the null included
    /// @throws I18NConversionError for an unknown name and for a character that the encoding cannot express
    char* toBytes(const char* encoding, int* length, I18NAllocator allocator, void* context) const;
    /// @overload
    char* toBytes(const I18NConverter& converter, int* length, I18NAllocator allocator, void* context) const;

    /// The text in UTF-8.
    /// @throws I18NConversionError for a lone surrogate
    std::string toUtf8() const;

private:
    static constexpr int kInlineLength = 15;

    static int unitCount(const void* data, int lengthInBytes)
    {
        if (data == nullptr || lengthInBytes < 2) {
            return 0;
        }
        const int units = lengthInBytes / 2;
        char16_t last;
        std::memcpy(&last, static_cast<const char*>(data) + 2 * (static_cast<std::size_t>(units) - 1),
                    sizeof last);
        return last == 0 ? units - 1 : units;
    }

    /// Copies the first and the last piece, which may overlap each other and their target: both are read before one is
    /// written.
    template <std::size_t kPiece>
    static void copyEnds(char* to, const char* from, std::size_t bytes)
    {
        char first[kPiece];
        char last[kPiece];
        std::memcpy(first, from, kPiece);
        std::memcpy(last, from + bytes - kPiece, kPiece);
        std::memcpy(to, first, kPiece);
        std::memcpy(to + bytes - kPiece, last, kPiece);
    }

    /// Copies up to 15 units in pieces of fixed size, which the compiler makes single moves. The data may be part of
    /// the target.
    static void copyShort(char16_t* to, const void* from, int length)
    {
        const auto* const source = static_cast<const char*>(from);
        auto* const target = reinterpret_cast<char*>(to);
        const std::size_t bytes = 2 * static_cast<std::size_t>(length);
        if (length >= 8) {
            copyEnds<16>(target, source, bytes);
        } else if (length >= 4) {
            copyEnds<8>(target, source, bytes);
        } else if (length >= 2) {
            copyEnds<4>(target, source, bytes);
        } else if (length == 1) {
            std::memcpy(target, source, 2);
        }
    }

    void setLength(int length)
    {
        m_length = length;
        m_units[length] = 0;
    }

    /// Replaces the contents by units that may be part of them.
    void set(const void* data, int length)
    {
        if (length <= kInlineLength) {
            copyShort(m_units, data, length);
            setLength(length);
        } else {
            setLong(data, length);
        }
    }

    void setLong(const void* data, int length);
    void setChecked(const void* data, int length, I18NErrorCallback callback, void* context);
    void grow(int length, int kept);
    void decode(const char* bytes, std::size_t length, const I18NConverter& converter);

    char16_t* m_units;
    int m_length = 0;
    int m_capacity = kInlineLength;
    char16_t m_inline[kInlineLength + 1];
};

inline bool operator==(const I18NString& a, const I18NString& b)
{
    return a.length() == b.length()
           && std::memcmp(a.getExternalBuffer(), b.getExternalBuffer(),
                          2 * static_cast<std::size_t>(a.length()))
                  == 0;
}
inline bool operator!=(const I18NString& a, const I18NString& b)
{
    return !(a == b);
}
/// By code unit.
inline bool operator<(const I18NString& a, const I18NString& b)
{
    return a.compare(b) < 0;
}

QRMCORE_API I18NString operator+(const I18NString& a, const I18NString& b);

/// Writes the text in UTF-8.
/// @throws I18NConversionError for a lone surrogate
QRMCORE_API std::ostream& operator<<(std::ostream& stream, const I18NString& text);

/// @cond
// For std::unordered_map and the like.
template <>
struct std::hash<I18NString>
{
    std::size_t operator()(const I18NString& text) const noexcept
    {
        return std::hash<std::u16string_view>()(
            std::u16string_view(text.getExternalBuffer(), static_cast<std::size_t>(text.length())));
    }
};
/// @endcond

#endif
