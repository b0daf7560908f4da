// Bytes of any encoding become characters and the same bytes' characters again; strings are what std::u16string is.

#include <algorithm>
#include <memory>

#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThrowable.h"
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    return 0;
}

namespace {

constexpr const char* kEncodings[] = {nullptr,        "UTF-8",     "US-ASCII", "ISO-8859-1",   "UTF-16",
                                      "UTF-16BE",     "UTF-32LE",  "KOI8-R",   "windows-1252", "Shift_JIS",
                                      "EUC-JP",       "GB18030",   "Big5",     "IBM037",       "ISO-8859-15",
                                      "windows-1255", "macintosh", "EUC-KR",   "ISO-8859-7",   "UTF-32BE"};

std::u16string unitsOf(const I18NString& text)
{
    return std::u16string(text.getExternalBuffer(), static_cast<std::size_t>(text.length()));
}

I18NString stringOf(const std::u16string& units)
{
    I18NString text;
    text.setTo((units + u'\0').data(), static_cast<int>(2 * (units.size() + 1)));
    return text;
}

int sign(int value)
{
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

/// The bytes; null where the encoding lacks a character.
std::unique_ptr<char[]> bytesOf(const I18NString& text, const I18NConverter& converter, int& length)
{
    try {
        return std::unique_ptr<char[]>(text.toBytes(converter, &length, QRMI18NStringAllocator, nullptr));
    } catch (const I18NConversionError&) {
        return nullptr;
    }
}

void convert(const std::string& bytes, const char* encoding)
{
    const I18NConverter converter(encoding);
    I18NString text;
    try {
        text = I18NString(bytes.data(), static_cast<int>(bytes.size()),
                          encoding != nullptr ? encoding : "UTF-8");
    } catch (const I18NConversionError&) {
        // Ill-formed; its units serve as text all the same, lone surrogates and all.
        text = I18NString(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
    }
    int length = 0;
    const std::unique_ptr<char[]> converted = bytesOf(text, converter, length);
    fuzz::require((converted == nullptr) == (converter.firstUnexpressible(text) >= 0),
                  "the first character that the encoding lacks");
    if (converted != nullptr) {
        const I18NString again(converted.get(), length - converter.sizeofLegacyNull(),
                               encoding != nullptr ? encoding : "UTF-8");
        fuzz::require(again == text, "there and back");
    }
    // The other roads take text up to a zero unit.
    const I18NString upToZero(text.getExternalBuffer());
    const std::unique_ptr<char[]> direct = bytesOf(upToZero, converter, length);
    const std::unique_ptr<char[]> ended(
        converter.fromUnicodeIfExpressible(text.getExternalBuffer(), QRMI18NStringAllocator, nullptr));
    fuzz::require((direct == nullptr) == (ended == nullptr), "expressible on one road only");
    if (ended != nullptr) {
        fuzz::require(std::equal(ended.get(), ended.get() + length, direct.get()), "two roads, two results");
    }
}

void edit(fuzz::Input& input)
{
    I18NString text;
    std::u16string expected;
    for (int step = 0; step < 50; ++step) {
        const unsigned operation = input.choice();
        const std::string bytes = input.text();
        std::u16string units;
        for (const char byte : bytes) {
            units += static_cast<char16_t>(static_cast<unsigned char>(byte));
        }
        const I18NString other = stringOf(units);
        switch (operation % 8) {
        case 0:
            text.append(other);
            expected += units;
            break;
        case 1:
            text += text;
            expected += expected;
            if (expected.size() > 10000) {
                return;
            }
            break;
        case 2: {
            const auto start = units.empty() ? 0 : static_cast<int>(units[0]) - 10;
            const auto length = units.size() < 2 ? -1 : static_cast<int>(units[1]) - 10;
            const auto from = static_cast<std::size_t>(std::clamp(start, 0, text.length()));
            // What lies before the string is cut off from the piece.
            const auto count = length < 0
                                   ? std::u16string::npos
                                   : static_cast<std::size_t>(std::max(length + std::min(start, 0), 0));
            fuzz::require(unitsOf(text.substring(start, length)) == expected.substr(from, count),
                          "substring");
            break;
        }
        case 3: {
            const std::size_t at = expected.find(units);
            fuzz::require(text.indexOf(other) == (at == std::u16string::npos ? -1 : static_cast<int>(at)),
                          "indexOf");
            break;
        }
        case 4:
            fuzz::require(text.startsWith(other) == (expected.compare(0, units.size(), units) == 0),
                          "startsWith");
            break;
        case 5:
            fuzz::require(sign(text.compare(other)) == sign(expected.compare(units)), "compare");
            fuzz::require((text == other) == (expected == units), "equality");
            break;
        case 6: {
            I18NString copy(text);
            text = other;
            fuzz::require(unitsOf(copy) == expected, "the copy changed");
            text = std::move(copy);
            break;
        }
        default:
            text = text.substring(1);
            expected.erase(0, 1);
            break;
        }
        fuzz::require(unitsOf(text) == expected && text.getExternalBuffer()[text.length()] == 0, "units");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const unsigned choice = input.choice();
    if (choice < 128) {
        convert(input.rest(), kEncodings[choice % std::size(kEncodings)]);
    } else {
        edit(input);
    }
    return 0;
}
