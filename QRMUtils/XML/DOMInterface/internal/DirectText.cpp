#include "QRMUtils/XML/DOMInterface/internal/DirectText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "QRMCore/internal/UnitLength.h"
#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

namespace qrm {

namespace {

constexpr std::size_t kBlock = 8;  // units
constexpr std::size_t kShort = 48; // units
constexpr char32_t kLastAscii = 0x7F;
constexpr char32_t kLastLatin1 = 0xFF;

struct Entity
{
    const char* text;
    int length;
};

/// The entity that stands for a markup character; none, with a null text, for any other.
Entity entityFor(char32_t character)
{
    switch (character) {
    case '<': return {"&lt;", 4};
    case '>': return {"&gt;", 4};
    case '&': return {"&amp;", 5};
    case '\'': return {"&apos;", 6};
    case '"': return {"&quot;", 6};
    default: return {nullptr, 0};
    }
}

/// Whether a character stands for itself in text: an ASCII character but the zero that ends a text and the five markup
/// characters. One look instead of five questions.
struct PlainTable
{
    bool isPlain[128] = {};

    constexpr PlainTable()
    {
        for (int byte = 1; byte < 128; ++byte) {
            isPlain[byte] = byte != '<' && byte != '>' && byte != '&' && byte != '\'' && byte != '"';
        }
    }
};
constexpr PlainTable kPlain;

bool isPlain(char32_t character)
{
    return character <= kLastAscii && kPlain.isPlain[character];
}

/// Copies ASCII characters that need no escape up to the first other unit, of those that make whole blocks.
void copyPlainBlocks([[maybe_unused]] const char16_t*& in, [[maybe_unused]] const char16_t* end,
                     [[maybe_unused]] char*& out)
{
#if defined(__SSE2__)
    const auto has = [](const __m128i& bytes, char byte) {
        return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte));
    };
    while (static_cast<std::size_t>(end - in) >= kBlock) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        const __m128i bytes = _mm_packus_epi16(units, units);
        const __m128i isAscii = _mm_cmpeq_epi16(
            _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80))), _mm_setzero_si128());
        const __m128i markup = _mm_or_si128(_mm_or_si128(_mm_or_si128(has(bytes, '<'), has(bytes, '>')),
                                                         _mm_or_si128(has(bytes, '&'), has(bytes, '"'))),
                                            has(bytes, '\''));
        const auto plain = static_cast<unsigned int>(
            _mm_movemask_epi8(_mm_andnot_si128(markup, _mm_packs_epi16(isAscii, isAscii))));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
        const unsigned int others = ~plain & 0xFF;
        const std::size_t copied = others == 0 ? kBlock : static_cast<std::size_t>(__builtin_ctz(others));
        in += copied;
        out += copied;
        if (others != 0) {
            return;
        }
    }
#endif
}

/// Reads a character; a lone surrogate comes as it is.
char32_t readCharacter(const char16_t*& in, const char16_t* end)
{
    const char32_t unit = *in++;
    if (unit >= 0xD800 && unit <= 0xDBFF && in != end && *in >= 0xDC00 && *in <= 0xDFFF) {
        return 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(*in++) - 0xDC00);
    }
    return unit;
}

char* putUtf8(char* out, char32_t character)
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

int toInt(std::size_t length)
{
    QRM_ASSERT(length <= static_cast<std::size_t>(std::numeric_limits<int>::max()));
    return static_cast<int>(length);
}

} // namespace

bool DirectText::convert(const XMLCh* text, char32_t last, bool hasReferences)
{
    m_escapes.clear();
    // Most texts are short and plain: names, values, white space.
    char* bytes = reserve(kShort);
    std::size_t plain = 0;
    if (text != nullptr) {
        while (plain < kShort && isPlain(text[plain])) {
            bytes[plain] = static_cast<char>(text[plain]);
            ++plain;
        }
    }
    m_length = plain;
    if (text == nullptr || text[plain] == 0) {
        return true;
    }
    const char16_t* in = text + plain;
    const char16_t* const end = in + unitLength(in);
    bytes = reserve(static_cast<std::size_t>(end - text));
    char* out = bytes + plain;
    const auto escape = [&](char32_t character) {
        m_escapes.push_back({static_cast<std::size_t>(out - bytes), character});
    };
    for (;;) {
        copyPlainBlocks(in, end, out);
        if (in == end) {
            break;
        }
        // What follows a character that is not ASCII is often another one.
        do {
            const char32_t character = readCharacter(in, end);
            if (isPlain(character)) {
                *out++ = static_cast<char>(character);
            } else if (character <= kLastAscii) {
                escape(character);
            } else if (character >= 0xD800 && character <= 0xDFFF) {
                return false;
            } else if (character > last) {
                if (!hasReferences) {
                    return false;
                }
                escape(character);
            } else if (last == kLastLatin1) {
                *out++ = static_cast<char>(character);
            } else {
                out = putUtf8(out, character);
            }
        } while (in != end && (*in > kLastAscii || static_cast<std::size_t>(end - in) < kBlock));
    }
    m_length = static_cast<std::size_t>(out - bytes);
    return true;
}

void DirectText::write(DomWriter& writer) const
{
    std::size_t start = 0;
    for (const Escape& escape : m_escapes) {
        writer.write(m_bytes.get() + start, toInt(escape.position - start));
        writeEscape(writer, escape.character);
        start = escape.position;
    }
    writer.write(m_bytes.get() + start, toInt(m_length - start));
}

/// Memory for the bytes of that many units, with room for a whole block behind them. What was converted stays.
char* DirectText::reserve(std::size_t units)
{
    constexpr std::size_t kMostBytes = 3; // of a unit; two units make four at most
    const std::size_t bytes = kMostBytes * units + kBlock;
    if (bytes > m_capacity) {
        const std::size_t capacity = std::max<std::size_t>({bytes, 2 * m_capacity, 1024});
        std::unique_ptr<char[]> larger(new char[capacity]);
        std::copy_n(m_bytes.get(), m_length, larger.get());
        m_bytes = std::move(larger);
        m_capacity = capacity;
    }
    return m_bytes.get();
}

void writeEscape(DomWriter& writer, char32_t character)
{
    const Entity entity = entityFor(character);
    if (entity.text != nullptr) {
        writer.write(entity.text, entity.length);
        return;
    }
    char reference[sizeof "&#1114111;"] = "&#";
    char* const end =
        std::to_chars(reference + 2, std::end(reference), static_cast<std::uint32_t>(character)).ptr;
    *end = ';';
    writer.write(reference, static_cast<int>(end + 1 - reference));
}

} // namespace qrm
