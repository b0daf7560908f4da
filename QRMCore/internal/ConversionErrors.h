#ifndef QRMCORE_INTERNAL_CONVERSIONERRORS_H
#define QRMCORE_INTERNAL_CONVERSIONERRORS_H

#include <cstddef>

namespace qrm {

[[noreturn]] void throwUnknownEncoding(const char* name);

/// @param index of the character in the text, in code units
[[noreturn]] void throwUnexpressible(const char* encoding, char32_t character, std::size_t index);

/// @param offset of the byte in the text
[[noreturn]] void throwIllFormedAt(const char* encoding, char byte, std::size_t offset);

/// @param offender the bytes that cannot be decoded, none where the text is cut off
[[noreturn]] void throwIllFormed(const char* encoding, const char* offender, std::size_t length);

/// A length that an int cannot hold.
[[noreturn]] void throwTooLong();

} // namespace qrm

#endif
