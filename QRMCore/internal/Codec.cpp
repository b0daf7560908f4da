#include "QRMCore/internal/Codec.h"

#include <cstring>
#include <limits>
#include <memory>

#include <strings.h>

#include "QRMCore/internal/ConversionErrors.h"
#include "QRMCore/internal/Icu.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qrm {

namespace {

constexpr const char* kUtf8Name = "UTF-8";

// The direct codecs differ in how many units an encoding can express.
constexpr char32_t kAsciiLimit = 0x80;
constexpr char32_t kLatin1Limit = 0x100;

/// Converts what it can eight units at a time; gives the units converted.
std::size_t narrowBlocks([[maybe_unused]] const char16_t* units, [[maybe_unused]] std::size_t count,
                         [[maybe_unused]] char32_t limit, [[maybe_unused]] char* bytes)
{
    std::size_t done = 0;
#if defined(__SSE2__)
    const __m128i beyond = _mm_set1_epi16(static_cast<short>(~(limit - 1)));
    const auto convertAt = [&](std::size_t index) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + index));
        const __m128i fits = _mm_cmpeq_epi16(_mm_and_si128(block, beyond), _mm_setzero_si128());
        if (_mm_movemask_epi8(fits) != 0xFFFF) {
            return false;
        }
        _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes + index), _mm_packus_epi16(block, block));
        return true;
    };
    while (count - done >= 8 && convertAt(done)) {
        done += 8;
    }
    // The rest together with units before it that have been converted already.
    if (done >= 8 && count - done < 8 && done < count && convertAt(count - 8)) {
        done = count;
    }
#endif
    return done;
}

/// Eight units of two bytes each, as Greek, Cyrillic, Hebrew and Arabic letters are; gives the units converted.
std::size_t twoByteBlocks([[maybe_unused]] const char16_t* units, [[maybe_unused]] std::size_t count,
                          [[maybe_unused]] char* bytes)
{
    std::size_t done = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i beyondAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i beyondTwoBytes = _mm_set1_epi16(static_cast<short>(0xF800));
    while (count - done >= 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + done));
        const int ascii = _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(block, beyondAscii), zero));
        const int fits = _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(block, beyondTwoBytes), zero));
        if (ascii != 0 || fits != 0xFFFF) {
            break;
        }
        const __m128i lead = _mm_or_si128(_mm_srli_epi16(block, 6), _mm_set1_epi16(0xC0));
        const __m128i trail = _mm_or_si128(_mm_and_si128(block, _mm_set1_epi16(0x3F)), _mm_set1_epi16(0x80));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + 2 * done),
                         _mm_or_si128(lead, _mm_slli_epi16(trail, 8)));
        done += 8;
    }
#endif
    return done;
}

char lowByte(char32_t value)
{
    return static_cast<char>(static_cast<unsigned char>(value));
}

char* putUtf8(char* out, char32_t character)
{
    if (character < 0x80) {
        *out++ = lowByte(character);
    } else if (character < 0x800) {
        *out++ = lowByte(0xC0 | (character >> 6));
        *out++ = lowByte(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        *out++ = lowByte(0xE0 | (character >> 12));
        *out++ = lowByte(0x80 | ((character >> 6) & 0x3F));
        *out++ = lowByte(0x80 | (character & 0x3F));
    } else {
        *out++ = lowByte(0xF0 | (character >> 18));
        *out++ = lowByte(0x80 | ((character >> 12) & 0x3F));
        *out++ = lowByte(0x80 | ((character >> 6) & 0x3F));
        *out++ = lowByte(0x80 | (character & 0x3F));
    }
    return out;
}

/// Encodes up to eight units one by one, so that the blocks are tried again soon. Gives the end of the bytes, null at
/// a lone surrogate.
char* utf8Units(const char16_t* units, std::size_t count, std::size_t& index, char* out)
{
    const std::size_t stop = count - index > 8 ? index + 8 : count;
    while (index < stop) {
        const char32_t character = characterAt(units, count, index);
        if (isSurrogate(character)) {
            return nullptr;
        }
        out = putUtf8(out, character);
        index += character > 0xFFFF ? 2 : 1;
    }
    return out;
}

/// Bytes for `count` units of UTF-8; null at a lone surrogate, whose index is left in `index`.
char* toUtf8(const char16_t* units, std::size_t count, std::size_t& index, char* out)
{
    while (index < count) {
        const std::size_t ascii = narrowBlocks(units + index, count - index, kAsciiLimit, out);
        index += ascii;
        out += ascii;
        const std::size_t pairs = twoByteBlocks(units + index, count - index, out);
        index += pairs;
        out += 2 * pairs;
        out = utf8Units(units, count, index, out);
        if (out == nullptr) {
            return nullptr;
        }
    }
    return out;
}

/// The bytes that well-formed units take in UTF-8; enough for ill-formed ones.
std::size_t utf8Length(const char16_t* units, std::size_t count)
{
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // Each half of a surrogate pair counts for two of its four bytes.
        const char16_t unit = units[i];
        bytes += unit < 0x80 ? 1 : (unit < 0x800 || isSurrogate(unit)) ? 2 : 3;
    }
    return bytes;
}

std::size_t utf8Room(const char16_t* units, std::size_t count)
{
    constexpr std::size_t kMaxGuessed = 256;
    // A lone surrogate is found while it is encoded and takes no room.
    return count <= kMaxGuessed ? 3 * count : utf8Length(units, count);
}

/// The index of the first unit from `index` on at or above the limit.
std::size_t firstBeyond(const char16_t* units, std::size_t count, std::size_t index, char32_t limit)
{
    while (index < count && units[index] < limit) {
        ++index;
    }
    return index;
}

std::size_t firstLoneSurrogate(const char16_t* units, std::size_t count, std::size_t index)
{
    while (index < count) {
        if (!isSurrogate(units[index])) {
            ++index;
        } else if (isPairAt(units, count, index)) {
            index += 2;
        } else {
            return index;
        }
    }
    return count;
}

bool canEncode(const char* name, const char16_t* units, std::size_t count)
{
    const std::size_t room = icu::maxBytes(name, units, count);
    const std::unique_ptr<char[]> bytes(new char[room]);
    std::size_t written = 0;
    return icu::tryEncode(name, units, count, bytes.get(), room, written);
}

std::size_t firstUnexpressibleByIcu(const char* name, const char16_t* units, std::size_t count,
                                    std::size_t from)
{
    if (canEncode(name, units + from, count - from)) {
        return count;
    }
    for (std::size_t index = from; index < count;) {
        const std::size_t length = isPairAt(units, count, index) ? 2 : 1;
        if (!canEncode(name, units + index, length)) {
            return index;
        }
        index += length;
    }
    return count;
}

constexpr std::size_t kUnexpressible = static_cast<std::size_t>(-1);

/// The bytes written to `bytes`, which has the room that roomFor() gives; kUnexpressible where a character is
/// not in the encoding.
std::size_t encodeInto(const Encoding& encoding, const char16_t* units, std::size_t count, char* bytes,
                       std::size_t room)
{
    switch (encoding.codec) {
    case Codec::kUtf8: {
        std::size_t index = 0;
        const char* const end = toUtf8(units, count, index, bytes);
        return end != nullptr ? static_cast<std::size_t>(end - bytes) : kUnexpressible;
    }
    case Codec::kAscii:
    case Codec::kLatin1: {
        const char32_t limit = encoding.codec == Codec::kAscii ? kAsciiLimit : kLatin1Limit;
        for (std::size_t index = narrowBlocks(units, count, limit, bytes); index < count; ++index) {
            if (units[index] >= limit) {
                return kUnexpressible;
            }
            bytes[index] = lowByte(units[index]);
        }
        return count;
    }
    case Codec::kUtf16:
        if (firstLoneSurrogate(units, count, 0) < count) {
            return kUnexpressible;
        }
        std::memcpy(bytes, units, 2 * count);
        return 2 * count;
    case Codec::kIcu: break;
    }
    std::size_t written = 0;
    return icu::tryEncode(encoding.name, units, count, bytes, room, written) ? written : kUnexpressible;
}

std::size_t roomFor(const Encoding& encoding, const char16_t* units, std::size_t count)
{
    switch (encoding.codec) {
    case Codec::kUtf8: return utf8Room(units, count);
    case Codec::kAscii:
    case Codec::kLatin1: return count;
    case Codec::kUtf16: return 2 * count;
    case Codec::kIcu: break;
    }
    return icu::maxBytes(encoding.name, units, count);
}

bool isTrail(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Decodes one sequence of two to four bytes and moves past it.
char32_t utf8Sequence(const char* bytes, std::size_t count, std::size_t& index)
{
    const auto lead = static_cast<unsigned char>(bytes[index]);
    const int trails = lead >= 0xC2 && lead <= 0xDF   ? 1
                       : (lead & 0xF0) == 0xE0        ? 2
                       : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                      : 0;
    if (trails == 0) {
        throwIllFormedAt(kUtf8Name, bytes[index], index);
    }
    char32_t character = lead & (0x3Fu >> trails);
    for (int i = 1; i <= trails; ++i) {
        const std::size_t at = index + static_cast<std::size_t>(i);
        if (at >= count || !isTrail(bytes[at])) {
            throwIllFormedAt(kUtf8Name, bytes[index], index);
        }
        character = (character << 6) | (static_cast<unsigned char>(bytes[at]) & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (character < kSmallest[trails] || character > 0x10FFFF || isSurrogate(character)) {
        throwIllFormedAt(kUtf8Name, bytes[index], index);
    }
    index += static_cast<std::size_t>(trails) + 1;
    return character;
}

std::size_t decodeUtf8(const char* bytes, std::size_t count, char16_t* units)
{
    char16_t* out = units;
    for (std::size_t index = 0; index < count;) {
        const auto byte = static_cast<unsigned char>(bytes[index]);
        if (byte < 0x80) {
            *out++ = byte;
            ++index;
            continue;
        }
        const char32_t character = utf8Sequence(bytes, count, index);
        if (character > 0xFFFF) {
            *out++ = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            *out++ = static_cast<char16_t>(character);
        }
    }
    return static_cast<std::size_t>(out - units);
}

std::size_t decodeBytes(const Encoding& encoding, const char* bytes, std::size_t count, char32_t limit,
                        char16_t* units)
{
    for (std::size_t i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte >= limit) {
            throwIllFormedAt(encoding.name, bytes[i], i);
        }
        units[i] = byte;
    }
    return count;
}

std::size_t decodeUtf16(const Encoding& encoding, const char* bytes, std::size_t count, char16_t* units)
{
    const std::size_t length = count / 2;
    std::memcpy(units, bytes, 2 * length);
    const std::size_t lone = firstLoneSurrogate(units, length, 0);
    if (lone < length) {
        throwIllFormedAt(encoding.name, bytes[2 * lone], 2 * lone);
    }
    if (count % 2 != 0) {
        throwIllFormedAt(encoding.name, bytes[count - 1], count - 1);
    }
    return length;
}

} // namespace

Encoding encodingNamed(const char* name)
{
    // The usual spellings are told without asking ICU; it knows all the others.
    if (name == nullptr || std::strcmp(name, kUtf8Name) == 0 || strcasecmp(name, kUtf8Name) == 0) {
        return {Codec::kUtf8, kUtf8Name};
    }
    if (strcasecmp(name, "ISO-8859-1") == 0) {
        return {Codec::kLatin1, name};
    }
    if (strcasecmp(name, "US-ASCII") == 0) {
        return {Codec::kAscii, name};
    }
    if (strcasecmp(name, "UTF-16") == 0) {
        return {Codec::kUtf16, name};
    }
    return {icu::codecNamed(name), name};
}

int nullSize(const Encoding& encoding)
{
    switch (encoding.codec) {
    case Codec::kUtf8:
    case Codec::kAscii:
    case Codec::kLatin1: return 1;
    case Codec::kUtf16: return 2;
    case Codec::kIcu: break;
    }
    return icu::nullSize(encoding.name);
}

char* tryEncode(const Encoding& encoding, const char16_t* units, std::size_t count, int* byteLength,
                I18NAllocator allocator, void* context)
{
    const auto terminator = static_cast<std::size_t>(nullSize(encoding));
    const std::size_t room = roomFor(encoding, units, count);
    if (room + terminator > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throwTooLong();
    }
    auto* const bytes = static_cast<char*>(allocator(context, room + terminator));
    const std::size_t written = encodeInto(encoding, units, count, bytes, room);
    if (written == kUnexpressible) {
        // Only memory of the usual allocator can be given back; that of others is their owner's.
        if (allocator == QRMI18NStringAllocator) {
            delete[] bytes;
        }
        return nullptr;
    }
    for (std::size_t i = 0; i < terminator; ++i) {
        bytes[written + i] = 0;
    }
    if (byteLength != nullptr) {
        *byteLength = static_cast<int>(written + terminator);
    }
    return bytes;
}

char* encode(const Encoding& encoding, const char16_t* units, std::size_t count, int* byteLength,
             I18NAllocator allocator, void* context)
{
    char* const bytes = tryEncode(encoding, units, count, byteLength, allocator, context);
    if (bytes == nullptr) {
        const std::size_t index = firstUnexpressible(encoding, units, count, 0);
        throwUnexpressible(encoding.name, index < count ? characterAt(units, count, index) : 0, index);
    }
    return bytes;
}

std::size_t firstUnexpressible(const Encoding& encoding, const char16_t* units, std::size_t count,
                               std::size_t from)
{
    if (from >= count) {
        return count;
    }
    switch (encoding.codec) {
    case Codec::kAscii: return firstBeyond(units, count, from, kAsciiLimit);
    case Codec::kLatin1: return firstBeyond(units, count, from, kLatin1Limit);
    case Codec::kUtf8:
    case Codec::kUtf16: return firstLoneSurrogate(units, count, from);
    case Codec::kIcu: break;
    }
    return firstUnexpressibleByIcu(encoding.name, units, count, from);
}

std::size_t decode(const Encoding& encoding, const char* bytes, std::size_t count, char16_t* units,
                   std::size_t capacity)
{
    // A unit comes from at least one byte everywhere but in ICU's encodings.
    if (encoding.codec != Codec::kIcu && capacity < count) {
        return count;
    }
    switch (encoding.codec) {
    case Codec::kUtf8: return decodeUtf8(bytes, count, units);
    case Codec::kAscii: return decodeBytes(encoding, bytes, count, kAsciiLimit, units);
    case Codec::kLatin1: return decodeBytes(encoding, bytes, count, kLatin1Limit, units);
    case Codec::kUtf16: return decodeUtf16(encoding, bytes, count, units);
    case Codec::kIcu: break;
    }
    return icu::decode(encoding.name, bytes, count, units, capacity);
}

} // namespace qrm
