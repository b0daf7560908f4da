#ifndef QRMIDOM_INTERNAL_EVENTSTRINGS_H
#define QRMIDOM_INTERNAL_EVENTSTRINGS_H

#include <cstddef>
#include <memory>
#include <vector>

#include <xercesc/util/XercesDefs.hpp>

#include "QRMCore/QRMThrowable.h"

namespace qrm {

/// A string in UTF-8, with a zero byte behind it.
struct EventString
{
    const char* bytes;
    std::size_t length;
};

/// The strings of one event, in memory that serves for one event after another.
///
/// Each operation that needs more of it throws QRMOutOfMemoryError 0 for the place given, and I18NConversionError for
/// a lone surrogate.
class EventStrings
{
public:
    /// Gives up the strings of the event before.
    void clear();

    /// The text in UTF-8; null is empty.
    EventString add(const XMLCh* text, QRMFileLocation site);

    /// The text of that many units.
    EventString add(const XMLCh* text, std::size_t length, QRMFileLocation site);

    /// The namespace URI, the byte 1 and the name; the name alone where the URI is null or empty.
    const char* addName(const XMLCh* uri, const XMLCh* name);

    /// An array of that many pointers, one after the other; the former one is given up.
    const char** pointers(std::size_t count, QRMFileLocation site);

private:
    char* room(std::size_t units, QRMFileLocation site);
    void grow(std::size_t bytes, QRMFileLocation site);

    struct Block
    {
        std::unique_ptr<char[]> bytes;
        std::size_t size = 0;
    };

    std::vector<Block> m_full; // what was too small, but has strings of this event
    Block m_block;
    std::size_t m_used = 0;
    std::unique_ptr<const char*[]> m_pointers;
    std::size_t m_pointerCount = 0;
};

} // namespace qrm

#endif
