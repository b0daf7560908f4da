#ifndef QRMCORE_INTERNAL_CODEC_H
#define QRMCORE_INTERNAL_CODEC_H

#include <cstddef>

#include "QRMCore/I18NConverter.h"

namespace qrm {

/// How an encoding is converted: directly, or by ICU under its name.
enum class Codec
{
    kUtf8,
    kAscii,
    kLatin1,
    kUtf16,
    kIcu
};

/// An encoding ready for use. The name is borrowed and never null.
struct Encoding
{
    Codec codec;
    const char* name;
};

/// @param name null for UTF-8
/// @throws I18NConversionError for an unknown name
Encoding encodingNamed(const char* name);

/// The bytes of the encoding's null.
int nullSize(const Encoding& encoding);

/// The units in the encoding, ended by its null, in memory from the allocator.
/// @param byteLength where not null, gets the number of bytes, the null included
char* encode(const Encoding& encoding, const char16_t* units, std::size_t count, int* byteLength,
             I18NAllocator allocator, void* context);

/// The same, but null where a character is not in the encoding.
char* tryEncode(const Encoding& encoding, const char16_t* units, std::size_t count, int* byteLength,
                I18NAllocator allocator, void* context);

/// The index of the first character from `from` on that the encoding cannot express; `count` where there is none.
std::size_t firstUnexpressible(const Encoding& encoding, const char16_t* units, std::size_t count,
                               std::size_t from);

/// Decodes into `units`, which has room for `capacity` units.
/// @return the units that the bytes make; when they are more than the room, call again with that much room
std::size_t decode(const Encoding& encoding, const char* bytes, std::size_t count, char16_t* units,
                   std::size_t capacity);

// Text

inline bool isSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}
inline bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}
inline bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Whether a surrogate pair stands at the index.
inline bool isPairAt(const char16_t* units, std::size_t count, std::size_t index)
{
    return isHighSurrogate(units[index]) && index + 1 < count && isLowSurrogate(units[index + 1]);
}

/// The character at the index; a lone surrogate is given as it is.
inline char32_t characterAt(const char16_t* units, std::size_t count, std::size_t index)
{
    if (!isPairAt(units, count, index)) {
        return units[index];
    }
    return 0x10000 + ((static_cast<char32_t>(units[index]) - 0xD800) << 10)
           + (static_cast<char32_t>(units[index + 1]) - 0xDC00);
}

} // namespace qrm

#endif
