#include "QRMUtils/XML/DOMInterface/internal/EventStrings.h"

#include <algorithm>

#include "QRMCore/I18NConverter.h"
#include "QRMCore/internal/UnitLength.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/Strings.h"
#include "QRMUtils/XML/DOMInterface/internal/Utf8.h"

namespace qrm {

namespace {

constexpr std::size_t kShort = 48; // units
constexpr char kSeparator = '\1';

// Log readers know where memory runs out while an event is put together.
constexpr const char* kFile = "QRMISAX_Parser.cpp";
constexpr QRMFileLocation kQualifiedName = {kFile, 101};
constexpr QRMFileLocation kNameAlone = {kFile, 108};

std::size_t lengthOf(const XMLCh* text)
{
    return text != nullptr ? unitLength(text) : 0;
}

/// Copies ASCII characters up to the end, the first other one, or so many that the text is not short.
/// @return how many were copied
std::size_t copyShort(const XMLCh* text, char* out)
{
    std::size_t count = 0;
    for (; count < kShort && text[count] != 0 && text[count] <= kLastAscii; ++count) {
        out[count] = static_cast<char>(text[count]);
    }
    return count;
}

/// The end of the text in UTF-8. The text with a lone surrogate goes to the converter, which tells where that is.
char* converted(const XMLCh* text, std::size_t length, char* out)
{
    char* const end = toUtf8(text, text + length, out);
    if (end == nullptr) {
        const std::unique_ptr<char[]> none(I18NConverter().fromUnicode(text, QRMI18NStringAllocator));
    }
    return end;
}

} // namespace

/// Memory for that many units in UTF-8 and a zero byte. Strings that were added stay where they are.
inline char* EventStrings::room(std::size_t units, QRMFileLocation site)
{
    const std::size_t bytes = kMostUtf8Bytes * units + 1 + kUnitBlock;
    if (bytes > m_block.size - m_used) {
        grow(bytes, site);
    }
    return m_block.bytes.get() + m_used;
}

void EventStrings::clear()
{
    if (!m_full.empty()) {
        m_full.clear();
    }
    m_used = 0;
}

EventString EventStrings::add(const XMLCh* text, QRMFileLocation site)
{
    // Most texts are short and ASCII.
    char* const bytes = room(kShort, site);
    if (text == nullptr) {
        *bytes = 0;
        ++m_used;
        return {bytes, 0};
    }
    const std::size_t plain = copyShort(text, bytes);
    if (text[plain] == 0) {
        bytes[plain] = 0;
        m_used += plain + 1;
        return {bytes, plain};
    }
    return add(text, unitLength(text), site);
}

EventString EventStrings::add(const XMLCh* text, std::size_t length, QRMFileLocation site)
{
    char* const bytes = room(length, site);
    char* const end = converted(text, length, bytes);
    *end = 0;
    m_used += static_cast<std::size_t>(end + 1 - bytes);
    return {bytes, static_cast<std::size_t>(end - bytes)};
}

const char* EventStrings::addName(const XMLCh* uri, const XMLCh* name)
{
    if (isEmpty(uri)) {
        return add(name, kNameAlone).bytes;
    }
    const std::size_t uriLength = unitLength(uri);
    const std::size_t nameLength = lengthOf(name);
    char* const bytes = room(uriLength + 1 + nameLength, kQualifiedName);
    char* end = converted(uri, uriLength, bytes);
    *end++ = kSeparator;
    end = converted(name, nameLength, end);
    *end = 0;
    m_used += static_cast<std::size_t>(end + 1 - bytes);
    return bytes;
}

const char** EventStrings::pointers(std::size_t count, QRMFileLocation site)
{
    if (count > m_pointerCount) {
        const std::size_t larger = std::max<std::size_t>({count, 2 * m_pointerCount, 33});
        m_pointers.reset(allocated(site, [larger] { return new (std::nothrow) const char*[larger]; }));
        m_pointerCount = larger;
    }
    return m_pointers.get();
}

void EventStrings::grow(std::size_t bytes, QRMFileLocation site)
{
    const std::size_t size = std::max<std::size_t>({bytes, 2 * m_block.size, 4096});
    Block larger;
    larger.bytes.reset(allocated(site, [size] { return new (std::nothrow) char[size]; }));
    larger.size = size;
    if (m_used != 0) {
        allocated(site, [this] {
            m_full.reserve(m_full.size() + 1);
            return this;
        });
        m_full.push_back(std::move(m_block));
    }
    m_block = std::move(larger);
    m_used = 0;
}

} // namespace qrm
