#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"

#include <algorithm>
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
        writeEscape(writer, character);
        start = index + (character > 0xFFFF ? 2 : 1);
    }
}

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
        writeEscape(writer, static_cast<unsigned char>(text[special]));
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
    if (m_lastDirect != 0 && m_direct.convert(text, m_lastDirect, policy == Unexpressible::kReference)) {
        m_direct.write(m_writer);
        return;
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
        m_lastDirect = m_converter->lastDirect();
    }
    return *m_converter;
}

void TextOutput::raw(const XMLCh* text)
{
    writeRaw(m_writer, QRMIDOM_XercesHelper::DOMStringToI18NString(text));
}

} // namespace qrm
