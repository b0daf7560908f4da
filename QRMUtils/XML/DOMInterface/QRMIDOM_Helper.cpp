#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"

#include <cstring>
#include <fstream>
#include <limits>
#include <ostream>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "QRMUtils/XML/DOMInterface/DomWriter.h"
#include "QRMUtils/XML/DOMInterface/internal/Guards.h"
#include "QRMUtils/XML/DOMInterface/internal/TextOutput.h"

namespace {

class OstreamDomWriter final : public DomWriter
{
public:
    OstreamDomWriter(const char* encoding, std::ostream& stream) : DomWriter(encoding), m_stream(&stream) {}

    void write(const char* data, int length) override { m_stream->write(data, length); }
    void endline() override { *m_stream << std::endl; }

private:
    std::ostream* m_stream;
};

class FileDomWriter final : public DomWriter
{
public:
    FileDomWriter(const char* encoding, std::FILE* file) : DomWriter(encoding), m_file(file)
    {
        QRM_ASSERT(file != NULL);
    }

    void write(const char* data, int length) override
    {
        std::fwrite(data, 1, static_cast<std::size_t>(length), m_file);
    }
    void endline() override { std::fwrite("\n", 1, 1, m_file); }

private:
    std::FILE* m_file;
};

/// Nothing where a caller gives null for text.
const char* orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

/// Passes blocks of 16 bytes without a special character; gives the index where the next block would start.
int plainBlocks([[maybe_unused]] const char* text, int start, [[maybe_unused]] int end)
{
    int index = start;
#if defined(__SSE2__)
    const auto has = [](const __m128i& block, char byte) {
        return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte));
    };
    for (; end - index >= 16; index += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + index));
        const __m128i special = _mm_or_si128(_mm_or_si128(_mm_or_si128(has(block, '<'), has(block, '>')),
                                                          _mm_or_si128(has(block, '&'), has(block, '"'))),
                                             has(block, '\''));
        if (_mm_movemask_epi8(special) != 0) {
            break;
        }
    }
#endif
    return index;
}

/// Runs the serialization of a node into the file of that name.
/// @param function the operation that callers see in the back trace
template <class Serialize>
void writeToPath(const char* path, const char* function, QRMFileLocation site, Serialize&& serialize)
{
    try {
        std::ofstream stream(orEmpty(path));
        if (stream.fail()) {
            char message[1024];
            std::snprintf(message, sizeof message,
                          "System error occured while trying to write (QRMIDOM_Helper::write): %s",
                          orEmpty(path));
            throw QRMSystemError(0, message);
        }
        serialize(stream);
    } catch (QRMThrowable& error) {
        error.addBackTrace(site, function, "QRM_RETHROW");
        throw;
    } catch (const xercesc::OutOfMemoryException&) {
        qrm::raiseXercesOutOfMemory(site);
    } catch (...) {
        throw QRMSystemError(0, "Unknown error occured while doing QRMIDOM_Helper::write");
    }
}

} // namespace

void QRMIDOM_Helper::write(QRMIDOM_Node node, const char* path, const char* encoding)
{
    writeToPath(path, "QRMIDOM_Helper::write", QRM_SITE_HERE,
                [&](std::ostream& stream) { write(node, stream, encoding); });
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, std::ostream& stream, const char* encoding)
{
    OstreamDomWriter writer(encoding, stream);
    writer << node;
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, std::FILE* file, const char* encoding)
{
    FileDomWriter writer(encoding, file);
    writer << node;
}

void QRMIDOM_Helper::write(QRMIDOM_Node node, DomWriter& writer)
{
    writer << node;
}

void QRMIDOM_Helper::write(std::ostream& stream, const I18NString& text, const char* encoding)
{
    OstreamDomWriter writer(encoding, stream);
    write(writer, text);
}

void QRMIDOM_Helper::write(std::FILE* file, const I18NString& text, const char* encoding)
{
    FileDomWriter writer(encoding, file);
    write(writer, text);
}

void QRMIDOM_Helper::write(DomWriter& writer, const I18NString& text)
{
    qrm::writeEscaped(writer, text);
}

void QRMIDOM_Helper::write(DomWriter& writer, const char* text)
{
    const char* const bytes = orEmpty(text);
    qrm::writeEscaped(writer, bytes, std::strlen(bytes));
}

void QRMIDOM_Helper::writeNoEscape(DomWriter& writer, const I18NString& text)
{
    qrm::writeRaw(writer, text);
}

void QRMIDOM_Helper::writeNoEscape(DomWriter& writer, const char* text)
{
    const char* const bytes = orEmpty(text);
    const std::size_t length = std::strlen(bytes);
    QRM_ASSERT(length <= static_cast<std::size_t>(std::numeric_limits<int>::max()));
    writer.write(bytes, static_cast<int>(length));
}

void QRMIDOM_Helper::writeNoEscape(std::ostream& stream, const I18NString& text, const char* /*encoding*/)
{
    OstreamDomWriter writer(nullptr, stream);
    writeNoEscape(writer, text);
}

void QRMIDOM_Helper::writeNoEscape(std::ostream& stream, const char* text, const char* /*encoding*/)
{
    const char* const bytes = orEmpty(text);
    stream.write(bytes, static_cast<std::streamsize>(std::strlen(bytes)));
}

void QRMIDOM_Helper::writeNoEscape(std::FILE* file, const char* text, const char* /*encoding*/)
{
    QRM_ASSERT(file != NULL);
    const char* const bytes = orEmpty(text);
    std::fwrite(bytes, 1, std::strlen(bytes), file);
}

int QRMIDOM_Helper::findSpecialChar(const char* text, int start, int end)
{
    if (text == nullptr || start >= end) {
        return -1;
    }
    for (int i = plainBlocks(text, start, end); i < end; ++i) {
        switch (text[i]) {
        case '<':
        case '>':
        case '&':
        case '\'':
        case '"': return i;
        default: break;
        }
    }
    return -1;
}
