#ifndef QRMIDOM_INTERNAL_TEXTOUTPUT_H
#define QRMIDOM_INTERNAL_TEXTOUTPUT_H

#include <cstddef>
#include <memory>
#include <optional>

#include <xercesc/util/XercesDefs.hpp>

#include "QRMCore/I18NConverter.h"
#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/internal/DirectText.h"

class I18NString;

namespace qrm {

/// What to do with a character that the encoding cannot express.
enum class Unexpressible
{
    kReference, // where a character reference means the character: text and attribute values
    kError      // everywhere else
};

/// Memory for one converted string after another, as an allocator of the string library. What it gave last is void
/// with the next request.
class ScratchMemory
{
public:
    static void* allocate(void* scratch, std::size_t bytes);

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0;
};

/// Writes `length` bytes in runs between the five markup characters, each of which becomes an entity. The last run is
/// written even when it is empty.
void writeEscaped(DomWriter& writer, const char* text, std::size_t length);

/// Converts the text to the writer's encoding and writes it escaped, up to the first zero byte, with references for
/// the characters that the encoding cannot express.
void writeEscaped(DomWriter& writer, const I18NString& text);

/// Converts the text to the writer's encoding and writes it in one piece.
void writeRaw(DomWriter& writer, const I18NString& text);

/// Writes the strings of a tree, null or zero-terminated, with memory that serves for all of them.
class TextOutput
{
public:
    explicit TextOutput(DomWriter& writer) : m_writer(writer) {}

    void literal(const char* text, int length) { m_writer.write(text, length); }
    void escaped(const XMLCh* text, Unexpressible policy);
    void raw(const XMLCh* text);

private:
    /// The writer is asked for its encoding each time, the converter made anew when that has changed.
    const I18NConverter& currentConverter();

    DomWriter& m_writer;
    std::optional<I18NConverter> m_converter;
    char32_t m_lastDirect = 0;
    DirectText m_direct;
    ScratchMemory m_scratch;
};

} // namespace qrm

#endif
