#include "QRMUtils/XML/DOMInterface/internal/DirectText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <limits>

#include "QRMCore/internal/UnitLength.h"
#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/Utf8.h"

namespace qrm {

namespace {

constexpr std::size_t kShort = 48; // units
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
    const bool isLatin1 = last == kLastLatin1;
    const auto escape = [&](char32_t character) {
        m_escapes.push_back({static_cast<std::size_t>(out - bytes), character});
    };
    for (;;) {
        copyAsciiBlocks<true>(in, end, out);
        if (in == end) {
            break;
        }
        // What follows a character that is not ASCII is often another one.
        do {
            const char32_t character = readCharacter(in, end);
            if (isSurrogate(character)) {
                return false;
            }
            if (isPlain(character) || (isLatin1 && character > kLastAscii && character <= last)) {
                *out++ = static_cast<char>(character);
            } else if (character > kLastAscii && character <= last) {
                out = putUtf8(out, character);
            } else if (character <= kLastAscii || hasReferences) {
                escape(character);
            } else {
                return false;
            }
        } while (in != end && (*in > kLastAscii || static_cast<std::size_t>(end - in) < kUnitBlock));
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
    const std::size_t bytes = kMostUtf8Bytes * units + kUnitBlock;
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
