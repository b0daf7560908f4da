#ifndef QRMIDOM_INTERNAL_DIRECTTEXT_H
#define QRMIDOM_INTERNAL_DIRECTTEXT_H

#include <cstddef>
#include <memory>
#include <vector>

#include <xercesc/util/XercesDefs.hpp>

class DomWriter;

namespace qrm {

/// Text on its way to a writer whose encoding is UTF-8, ISO-8859-1 or US-ASCII: converted, and searched for what must
/// be escaped, in one go. The memory serves for one text after another.
class DirectText
{
public:
    /// Takes a text, which is null or ends with a zero unit.
    /// @param last the last character of the encoding
    /// @param hasReferences whether a reference stands for a character that the encoding does not have
    /// @return false for a text that has a lone surrogate, or other characters that cannot be written
    bool convert(const XMLCh* text, char32_t last, bool hasReferences);

    /// Writes the text that was taken: the runs between the characters that are escaped, the last one even when it is
    /// empty, and an entity or a reference for each of these.
    void write(DomWriter& writer) const;

private:
    /// A character that is escaped, and the number of bytes before it.
    struct Escape
    {
        std::size_t position;
        char32_t character;
    };

    char* reserve(std::size_t units);

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0;
    std::size_t m_length = 0;
    std::vector<Escape> m_escapes;
};

/// Writes an entity for one of the five markup characters, a decimal character reference for any other.
void writeEscape(DomWriter& writer, char32_t character);

} // namespace qrm

#endif
