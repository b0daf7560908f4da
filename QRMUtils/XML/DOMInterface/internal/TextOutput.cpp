#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include "QRMCore/I18NConverter.h"
#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"

namespace qrm {

namespace {

struct Entity
{
    const char* text;
    int length;
};

/// The entity that stands for a byte; null where the byte stands for itself.
const Entity* entityFor(char byte)
{
    static constexpr Entity kLess = {"&lt;", 4};
    static constexpr Entity kGreater = {"&gt;", 4};
    static constexpr Entity kAmpersand = {"&amp;", 5};
    static constexpr Entity kApostrophe = {"&apos;", 6};
    static constexpr Entity kQuote = {"&quot;", 6};
    switch (byte) {
    case '<': return &kLess;
    case '>': return &kGreater;
    case '&': return &kAmpersand;
    case '\'': return &kApostrophe;
    case '"': return &kQuote;
    default: return nullptr;
    }
}

/// The character at the index of a text without lone surrogates.
char32_t characterAt(const I18NString& text, int index)
{
    const char16_t unit = text.charAt(index);
    if (unit < 0xD800 || unit > 0xDFFF) {
        return unit;
    }
    const char16_t next = text.charAt(index + 1);
    return 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (static_cast<char32_t>(next) - 0xDC00);
}

void writeReference(DomWriter& writer, char32_t character)
{
    char reference[sizeof "&#1114111;"];
    const int length =
        std::snprintf(reference, sizeof reference, "&#%lu;", static_cast<unsigned long>(character));
    writer.write(reference, length);
}

/// The escaped write of a text that the encoding cannot express as a whole. The references take the place that
/// entities have in the sequence of writes. Nothing is written when half a surrogate pair is in the text.
void writeWithReferences(DomWriter& writer, const I18NConverter& converter, const I18NString& text)
{
    if (I18NConverter().firstUnexpressible(text) >= 0) {
        // No reference stands for half a pair. The conversion throws and says where it is.
        const std::unique_ptr<char[]> none(text.toBytes(converter, nullptr, QRMI18NStringAllocator, nullptr));
    }
    for (int start = 0;;) {
        const int index = converter.firstUnexpressible(text, start);
        const I18NString piece = text.substring(start, index >= 0 ? index - start : -1);
        int size = 0; // with the null at the end
        const std::unique_ptr<char[]> bytes(piece.toBytes(converter, &size, QRMI18NStringAllocator, nullptr));
        const std::size_t length = std::strlen(bytes.get());
        writeEscaped(writer, bytes.get(), length);
        const bool endsAtZeroByte =
            length + static_cast<std::size_t>(converter.sizeofLegacyNull()) < static_cast<std::size_t>(size);
        if (index < 0 || endsAtZeroByte) {
            return;
        }
        const char32_t character = characterAt(text, index);
        writeReference(writer, character);
        start = index + (character > 0xFFFF ? 2 : 1);
    }
}

/// Whether an ASCII character stands for itself in text; one look instead of five questions.
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

/// A short text that is plain ASCII: nothing to convert and nothing to escape, as most names and values are.
class PlainText
{
public:
    explicit PlainText(const XMLCh* text)
    {
        for (; m_length < kMaxLength; ++m_length) {
            const XMLCh unit = text != nullptr ? text[m_length] : XMLCh(0);
            if (unit == 0) {
                m_isPlain = true;
                return;
            }
            if (unit >= 0x80 || !kPlain.isPlain[unit]) {
                return;
            }
            m_bytes[m_length] = static_cast<char>(unit);
        }
    }

    explicit operator bool() const { return m_isPlain; }
    const char* bytes() const { return m_bytes; }
    int length() const { return m_length; }

private:
    static constexpr int kMaxLength = 48;

    char m_bytes[kMaxLength];
    int m_length = 0;
    bool m_isPlain = false;
};

/// Names are a few bytes, asked about for every string: comparing them here takes less than the call of a function.
bool sameName(const char* a, const char* b)
{
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    while (*a == *b && *a != 0) {
        ++a;
        ++b;
    }
    return *a == *b;
}

} // namespace

void* ScratchMemory::allocate(void* scratch, std::size_t bytes)
{
    auto& memory = *static_cast<ScratchMemory*>(scratch);
    if (bytes > memory.m_capacity) {
        const std::size_t capacity = std::max<std::size_t>({bytes, 2 * memory.m_capacity, 1024});
        memory.m_bytes.reset(new char[capacity]);
        memory.m_capacity = capacity;
    }
    return memory.m_bytes.get();
}

void writeEscaped(DomWriter& writer, const char* text, std::size_t length)
{
    QRM_ASSERT(length <= static_cast<std::size_t>(std::numeric_limits<int>::max()));
    int position = 0;
    const int end = static_cast<int>(length);
    for (;;) {
        const int special = QRMIDOM_Helper::findSpecialChar(text, position, end);
        if (special < 0) {
            writer.write(text + position, end - position);
            return;
        }
        writer.write(text + position, special - position);
        const Entity* const entity = entityFor(text[special]);
        writer.write(entity->text, entity->length);
        position = special + 1;
    }
}

void writeEscaped(DomWriter& writer, const I18NString& text)
{
    const I18NConverter converter(writer.getOutputEncoding());
    if (converter.firstUnexpressible(text) >= 0) {
        writeWithReferences(writer, converter, text);
        return;
    }
    const std::unique_ptr<char[]> bytes(text.toBytes(converter, nullptr, QRMI18NStringAllocator, nullptr));
    writeEscaped(writer, bytes.get(), std::strlen(bytes.get()));
}

void writeRaw(DomWriter& writer, const I18NString& text)
{
    const I18NConverter converter(writer.getOutputEncoding());
    int length = 0;
    const std::unique_ptr<char[]> bytes(text.toBytes(converter, &length, QRMI18NStringAllocator, nullptr));
    writer.write(bytes.get(), length - converter.sizeofLegacyNull());
}

void TextOutput::escaped(const XMLCh* text, Unexpressible policy)
{
    const I18NConverter& converter = currentConverter();
    if (m_keepsAscii) {
        if (const PlainText plain(text); plain) {
            m_writer.write(plain.bytes(), plain.length());
            return;
        }
    }
    const char* const bytes =
        policy == Unexpressible::kError
            ? converter.fromUnicode(text, ScratchMemory::allocate, &m_scratch)
            : converter.fromUnicodeIfExpressible(text, ScratchMemory::allocate, &m_scratch);
    if (bytes != nullptr) {
        writeEscaped(m_writer, bytes, std::strlen(bytes));
    } else {
        writeWithReferences(m_writer, converter, QRMIDOM_XercesHelper::DOMStringToI18NString(text));
    }
}

const I18NConverter& TextOutput::currentConverter()
{
    const char* const encoding = m_writer.getOutputEncoding();
    if (!m_converter.has_value() || !sameName(m_converter->getEncoding(), encoding)) {
        m_converter.emplace(encoding);
        m_keepsAscii = m_converter->keepsAscii();
    }
    return *m_converter;
}

void TextOutput::raw(const XMLCh* text)
{
    writeRaw(m_writer, QRMIDOM_XercesHelper::DOMStringToI18NString(text));
}

} // namespace qrm
