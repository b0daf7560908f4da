#include "QRMCore/internal/ConversionErrors.h"

#include <cstdio>
#include <string>

#include "QRMCore/QRMThrowable.h"

namespace qrm {

namespace {

std::string characterName(char32_t character)
{
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned int>(character));
    return name;
}

std::string byteName(char byte)
{
    char name[8];
    std::snprintf(name, sizeof name, "0x%02X", static_cast<unsigned int>(static_cast<unsigned char>(byte)));
    return name;
}

[[noreturn]] void throwError(const std::string& text)
{
    throw I18NConversionError(0, text.c_str());
}

} // namespace

void throwUnknownEncoding(const char* name)
{
    throwError("unknown encoding \"" + std::string(name) + "\"");
}

void throwUnexpressible(const char* encoding, char32_t character, std::size_t index)
{
    throwError("cannot express " + characterName(character) + " in " + encoding + " (unit "
               + std::to_string(index) + ")");
}

void throwIllFormedAt(const char* encoding, char byte, std::size_t offset)
{
    throwError("ill-formed " + std::string(encoding) + ": byte " + byteName(byte) + " at offset "
               + std::to_string(offset));
}

void throwIllFormed(const char* encoding, const char* offender, std::size_t length)
{
    std::string text = "ill-formed " + std::string(encoding) + ":";
    if (length == 0) {
        text += " the last character is cut off";
    }
    for (std::size_t i = 0; i < length; ++i) {
        text += (i == 0 ? " byte " : " ") + byteName(offender[i]);
    }
    throwError(text);
}

void throwTooLong()
{
    throw QRMOutOfMemoryError(0, "a string is too long to be counted");
}

} // namespace qrm
