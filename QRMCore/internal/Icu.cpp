#include "QRMCore/internal/Icu.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <unicode/ucnv.h>

#include "QRMCore/internal/ConversionErrors.h"

namespace qrm::icu {

namespace {

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using ConverterPtr = std::unique_ptr<UConverter, CloseConverter>;

struct OpenConverter
{
    std::string name;
    ConverterPtr converter;
    Codec codec;
};

constexpr std::size_t kMaxOpen = 16;

/// Opening a converter takes far longer than converting a string, so each thread keeps those it used last, the latest
/// first.
thread_local std::vector<OpenConverter> openConverters;

Codec codecOf(UConverter* converter)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::string canonical = ucnv_getName(converter, &status);
    if (canonical == "UTF-8") {
        return Codec::kUtf8;
    }
    if (canonical == "US-ASCII") {
        return Codec::kAscii;
    }
    if (canonical == "ISO-8859-1") {
        return Codec::kLatin1;
    }
    if (canonical == "UTF-16") {
        return Codec::kUtf16;
    }
    return Codec::kIcu;
}

/// Stops at every character that the encoding lacks. ICU's own callback for that drops soft hyphens and their like
/// without a word.
void stop(const void* /*context*/, UConverterFromUnicodeArgs* /*arguments*/, const UChar* /*units*/,
          int32_t /*length*/, UChar32 /*character*/, UConverterCallbackReason /*reason*/,
          UErrorCode* /*status*/)
{
}

OpenConverter open(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    ConverterPtr converter(*name != 0 ? ucnv_open(name, &status) : nullptr);
    if (converter == nullptr || U_FAILURE(status)) {
        throwUnknownEncoding(name);
    }
    ucnv_setFromUCallBack(converter.get(), stop, nullptr, nullptr, nullptr, &status);
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    const Codec codec = codecOf(converter.get());
    return {name, std::move(converter), codec};
}

OpenConverter& find(const char* name)
{
    const auto begin = openConverters.begin();
    const auto known = std::find_if(begin, openConverters.end(),
                                    [name](const OpenConverter& open) { return open.name == name; });
    if (known != openConverters.end()) {
        std::rotate(begin, known, known + 1);
        return openConverters.front();
    }
    OpenConverter opened = open(name);
    if (openConverters.size() == kMaxOpen) {
        openConverters.pop_back();
    }
    openConverters.insert(openConverters.begin(), std::move(opened));
    return openConverters.front();
}

UConverter* converterNamed(const char* name)
{
    return find(name).converter.get();
}

int32_t narrowed(std::size_t count)
{
    if (count > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
        throwTooLong();
    }
    return static_cast<int32_t>(count);
}

} // namespace

Codec codecNamed(const char* name)
{
    return find(name).codec;
}

int nullSize(const char* name)
{
    return ucnv_getMinCharSize(converterNamed(name));
}

std::size_t maxBytes(const char* name, const char16_t* units, std::size_t count)
{
    constexpr std::size_t kMaxGuessed = 0x10000;
    UConverter* const converter = converterNamed(name);
    if (count <= kMaxGuessed) {
        return static_cast<std::size_t>(
            UCNV_GET_MAX_BYTES_FOR_STRING(static_cast<int>(count), ucnv_getMaxCharSize(converter)));
    }
    UErrorCode status = U_ZERO_ERROR;
    return static_cast<std::size_t>(ucnv_fromUChars(converter, nullptr, 0, units, narrowed(count), &status))
           + 1;
}

bool tryEncode(const char* name, const char16_t* units, std::size_t count, char* bytes, std::size_t capacity,
               std::size_t& written)
{
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        ucnv_fromUChars(converterNamed(name), bytes, narrowed(capacity), units, narrowed(count), &status);
    written = static_cast<std::size_t>(length);
    return U_SUCCESS(status);
}

std::size_t decode(const char* name, const char* bytes, std::size_t count, char16_t* units,
                   std::size_t capacity)
{
    UConverter* const converter = converterNamed(name);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        ucnv_toUChars(converter, units, narrowed(capacity), bytes, narrowed(count), &status);
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) {
        char offender[32] = {};
        int8_t offenderLength = sizeof offender;
        UErrorCode ignored = U_ZERO_ERROR;
        ucnv_getInvalidChars(converter, offender, &offenderLength, &ignored);
        throwIllFormed(name, offender, U_SUCCESS(ignored) ? static_cast<std::size_t>(offenderLength) : 0);
    }
    return static_cast<std::size_t>(length);
}

} // namespace qrm::icu
