#ifndef QRMCORE_INTERNAL_ICU_H
#define QRMCORE_INTERNAL_ICU_H

#include <cstddef>

#include "QRMCore/internal/Codec.h"

namespace qrm::icu {

/// The codec for a name that ICU knows: a direct one where the name is another name for its encoding.
/// @throws I18NConversionError for an unknown name
Codec codecNamed(const char* name);

int nullSize(const char* name);

/// The most bytes that so many units can take, without the null.
std::size_t maxBytes(const char* name, const char16_t* units, std::size_t count);

/// Whether all could be encoded; `written` gets the number of bytes then.
bool tryEncode(const char* name, const char16_t* units, std::size_t count, char* bytes, std::size_t capacity,
               std::size_t& written);

/// As qrm::decode.
std::size_t decode(const char* name, const char* bytes, std::size_t count, char16_t* units,
                   std::size_t capacity);

} // namespace qrm::icu

#endif
