#ifndef QRMIDOM_INTERNAL_UTF8_H
#define QRMIDOM_INTERNAL_UTF8_H

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qrm {

constexpr char32_t kLastAscii = 0x7F;

/// How many units are looked at together, and how many bytes the output has room for behind its end.
constexpr std::size_t kUnitBlock = 8;

/// The most bytes of UTF-8 that a unit makes; two units make four at most.
constexpr std::size_t kMostUtf8Bytes = 3;

inline bool isSurrogate(char32_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

/// Copies ASCII characters up to the first other unit, of those that make whole blocks.
/// @tparam kStopsAtMarkup whether the five markup characters end it as well
template <bool kStopsAtMarkup>
void copyAsciiBlocks([[maybe_unused]] const char16_t*& in, [[maybe_unused]] const char16_t* end,
                     [[maybe_unused]] char*& out)
{
#if defined(__SSE2__)
    while (static_cast<std::size_t>(end - in) >= kUnitBlock) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        const __m128i bytes = _mm_packus_epi16(units, units);
        const __m128i isAscii = _mm_cmpeq_epi16(
            _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80))), _mm_setzero_si128());
        __m128i copied = _mm_packs_epi16(isAscii, isAscii);
        if constexpr (kStopsAtMarkup) {
            const auto has = [&bytes](char byte) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte)); };
            copied = _mm_andnot_si128(
                _mm_or_si128(_mm_or_si128(_mm_or_si128(has('<'), has('>')), _mm_or_si128(has('&'), has('"'))),
                             has('\'')),
                copied);
        }
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
        const unsigned int others = ~static_cast<unsigned int>(_mm_movemask_epi8(copied)) & 0xFF;
        const std::size_t count = others == 0 ? kUnitBlock : static_cast<std::size_t>(__builtin_ctz(others));
        in += count;
        out += count;
        if (others != 0) {
            return;
        }
    }
#endif
}

/// Reads a character; a lone surrogate comes as it is.
inline char32_t readCharacter(const char16_t*& in, const char16_t* end)
{
    const char32_t unit = *in++;
    if (unit >= 0xD800 && unit <= 0xDBFF && in != end && *in >= 0xDC00 && *in <= 0xDFFF) {
        return 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(*in++) - 0xDC00);
    }
    return unit;
}

/// Writes a character that is not ASCII.
/// @return the end of its bytes
inline char* putUtf8(char* out, char32_t character)
{
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
    if (character < 0x800) {
        put(0xC0 | (character >> 6));
    } else {
        if (character < 0x10000) {
            put(0xE0 | (character >> 12));
        } else {
            put(0xF0 | (character >> 18));
            put(0x80 | ((character >> 12) & 0x3F));
        }
        put(0x80 | ((character >> 6) & 0x3F));
    }
    put(0x80 | (character & 0x3F));
    return out;
}

/// Converts units to UTF-8, of which there is room for as much as they can make and a block.
/// @return the end of the bytes; null where there is a lone surrogate
inline char* toUtf8(const char16_t* in, const char16_t* end, char* out)
{
    for (;;) {
        copyAsciiBlocks<false>(in, end, out);
        if (in == end) {
            return out;
        }
        // What follows a character that is not ASCII is often another one.
        do {
            const char32_t unit = *in;
            if (unit <= kLastAscii) {
                *out++ = static_cast<char>(unit);
                ++in;
            } else if (!isSurrogate(unit)) {
                out = putUtf8(out, unit);
                ++in;
            } else {
                const char32_t character = readCharacter(in, end);
                if (isSurrogate(character)) {
                    return nullptr;
                }
                out = putUtf8(out, character);
            }
        } while (in != end && (*in > kLastAscii || static_cast<std::size_t>(end - in) < kUnitBlock));
    }
}

} // namespace qrm

#endif
