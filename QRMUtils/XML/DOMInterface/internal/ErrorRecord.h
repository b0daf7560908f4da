#ifndef QRMIDOM_INTERNAL_ERRORRECORD_H
#define QRMIDOM_INTERNAL_ERRORRECORD_H

#include <algorithm>
#include <limits>

#include <xercesc/util/XercesDefs.hpp>

namespace qrm {

// What both parsers put into their error records.

/// The code of an error in the document.
constexpr int kParseError = -1;

/// A line or a column; the largest that the record can hold where it is larger.
inline int narrowed(XMLFileLoc position)
{
    return static_cast<int>(std::min<XMLFileLoc>(position, std::numeric_limits<int>::max()));
}

} // namespace qrm

#endif
