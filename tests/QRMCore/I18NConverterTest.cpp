#include "QRMCore/I18NConverter.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThrowable.h"
#include "tests/support/FailingAllocator.h"

namespace {

std::u16string unitsOf(const I18NString& text)
{
    return std::u16string(text.getExternalBuffer(), static_cast<std::size_t>(text.length()));
}

std::u16string character(char32_t code)
{
    if (code < 0x10000) {
        return {static_cast<char16_t>(code)};
    }
    return {static_cast<char16_t>(0xD7C0 + (code >> 10)), static_cast<char16_t>(0xDC00 + (code & 0x3FF))};
}

bool isSurrogate(char32_t code)
{
    return code >= 0xD800 && code <= 0xDFFF;
}

I18NString fromUnits(const std::u16string& units)
{
    // The terminator is given, too, so that a zero unit at the end is not taken for it.
    return I18NString(units.c_str(), static_cast<int>(2 * units.size() + 2), nullptr, nullptr);
}

struct Bytes
{
    std::string text; // without the null
    int length;       // with it
};

Bytes toBytes(const std::u16string& units, const char* encoding)
{
    int length = -1;
    const std::unique_ptr<char[]> bytes(
        fromUnits(units).toBytes(encoding, &length, QRMI18NStringAllocator, nullptr));
    const int null = I18NConverter(encoding).sizeofLegacyNull();
    for (int i = length - null; i < length; ++i) {
        EXPECT_EQ(bytes[static_cast<std::size_t>(i)], 0);
    }
    return {std::string(bytes.get(), static_cast<std::size_t>(length - null)), length};
}

std::string errorOf(const std::u16string& units, const char* encoding)
{
    try {
        toBytes(units, encoding);
    } catch (const I18NConversionError& error) {
        return error.getText();
    }
    return "no error";
}

std::string decodeErrorOf(const std::string& bytes, const char* encoding)
{
    try {
        I18NString(bytes.data(), static_cast<int>(bytes.size()), encoding);
    } catch (const I18NConversionError& error) {
        return error.getText();
    }
    return "no error";
}

/// The oracle: a converter of ICU that stops at everything it cannot convert.
class Icu
{
public:
    explicit Icu(const char* name)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_converter = ucnv_open(name, &status);
        EXPECT_TRUE(U_SUCCESS(status)) << name;
        // The callback of that name lets ICU drop characters that are invisible.
        const auto stop = [](const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                             UConverterCallbackReason, UErrorCode*) {};
        ucnv_setFromUCallBack(m_converter, stop, nullptr, nullptr, nullptr, &status);
        ucnv_setToUCallBack(m_converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }
    Icu(const Icu&) = delete;
    Icu& operator=(const Icu&) = delete;
    ~Icu() { ucnv_close(m_converter); }

    bool encode(const std::u16string& units, std::string& bytes)
    {
        UErrorCode status = U_ZERO_ERROR;
        bytes.resize(16 + 8 * units.size());
        const int length = ucnv_fromUChars(m_converter, bytes.data(), static_cast<int>(bytes.size()),
                                           units.data(), static_cast<int>(units.size()), &status);
        bytes.resize(static_cast<std::size_t>(length));
        return U_SUCCESS(status);
    }

    bool decode(const std::string& bytes, std::u16string& units)
    {
        UErrorCode status = U_ZERO_ERROR;
        units.resize(16 + 4 * bytes.size());
        const int length = ucnv_toUChars(m_converter, units.data(), static_cast<int>(units.size()),
                                         bytes.data(), static_cast<int>(bytes.size()), &status);
        units.resize(static_cast<std::size_t>(length));
        return U_SUCCESS(status);
    }

private:
    UConverter* m_converter = nullptr;
};

class NamedEncoding : public testing::TestWithParam<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(I18NConverter, NamedEncoding,
                         testing::Values("UTF-8", "US-ASCII", "ISO-8859-1", "ISO-8859-2", "ISO-8859-5",
                                         "ISO-8859-7", "ISO-8859-9", "ISO-8859-15", "windows-1250",
                                         "windows-1251", "windows-1252", "windows-1254", "KOI8-R", "KOI8-U",
                                         "macintosh", "IBM850", "IBM037", "Shift_JIS", "EUC-JP",
                                         "ISO-2022-JP", "GB18030", "GBK", "Big5", "EUC-KR", "UTF-16BE",
                                         "UTF-16LE", "UTF-32", "UTF-32LE", "UTF-7", "TIS-620"),
                         [](const auto& encoding) {
                             std::string name = encoding.param;
                             for (char& c : name) {
                                 c = c == '-' || c == '_' ? 'x' : c;
                             }
                             return name;
                         });

TEST_P(NamedEncoding, AgreesWithIcuOnEveryCharacter)
{
    Icu icu(GetParam());
    const I18NConverter converter(GetParam());
    int expressible = 0;
    for (char32_t code = 1; code <= 0x10FFFF; ++code) {
        if (isSurrogate(code)) {
            continue;
        }
        const std::u16string units = character(code);
        std::string expected;
        const bool isExpressible = icu.encode(units, expected);
        // Asking is as good as converting, and converting what cannot be expressed is slow.
        ASSERT_EQ(converter.firstUnexpressible(fromUnits(units)), isExpressible ? -1 : 0)
            << static_cast<unsigned>(code);
        if (!isExpressible) {
            continue;
        }
        ++expressible;
        int length = 0;
        const std::unique_ptr<char[]> bytes(
            fromUnits(units).toBytes(converter, &length, QRMI18NStringAllocator, nullptr));
        ASSERT_EQ(std::string(bytes.get(), static_cast<std::size_t>(length - converter.sizeofLegacyNull())),
                  expected);
        std::u16string back;
        if (icu.decode(expected, back)) {
            ASSERT_EQ(unitsOf(I18NString(expected.data(), static_cast<int>(expected.size()), GetParam())),
                      back);
        }
    }
    EXPECT_GE(expressible, 94) << "hardly more than nothing was compared";
}

TEST_P(NamedEncoding, ConvertsLongTextsBothWays)
{
    std::u16string units;
    for (int i = 0; i < 100000; ++i) {
        units += u"plain text 0123456789 "[i % 22];
    }
    const Bytes bytes = toBytes(units, GetParam());
    EXPECT_EQ(unitsOf(I18NString(bytes.text.data(), static_cast<int>(bytes.text.size()), GetParam())), units);
}

TEST(I18NConverter, EncodesUtf8LikeIcuInEverySurrounding)
{
    Icu icu("UTF-8");
    for (const char16_t* sample : {u"a", u"\u00e9", u"\u0416", u"\u4e2d", u"\U0001F600"}) {
        for (int before = 0; before < 20; ++before) {
            for (int repeated = 0; repeated < 20; ++repeated) {
                std::u16string units(static_cast<std::size_t>(before), u'x');
                for (int i = 0; i < repeated; ++i) {
                    units += sample;
                }
                units += u"end";
                std::string expected;
                ASSERT_TRUE(icu.encode(units, expected));
                ASSERT_EQ(toBytes(units, nullptr).text, expected);
                ASSERT_EQ(unitsOf(I18NString(expected.c_str())), units);
            }
        }
    }
}

TEST(I18NConverter, AgreesWithIcuOnWhichBytesAreUtf8)
{
    const unsigned char interesting[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1,
                                         0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3,
                                         0xF4, 0xF5, 0xF7, 0xF8, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};
    Icu icu("UTF-8");
    int wellFormed = 0;
    int illFormed = 0;
    const auto compare = [&](const std::string& bytes) {
        std::u16string expected;
        if (icu.decode(bytes, expected)) {
            ++wellFormed;
            ASSERT_EQ(unitsOf(I18NString(bytes.data(), static_cast<int>(bytes.size()), nullptr)), expected);
        } else {
            ++illFormed;
            ASSERT_NE(decodeErrorOf(bytes, nullptr), "no error");
        }
    };
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            compare({static_cast<char>(first), static_cast<char>(second)});
        }
    }
    for (const unsigned char a : interesting) {
        for (const unsigned char b : interesting) {
            for (const unsigned char c : interesting) {
                compare({static_cast<char>(a), static_cast<char>(b), static_cast<char>(c)});
                for (const unsigned char d : interesting) {
                    compare({static_cast<char>(a), static_cast<char>(b), static_cast<char>(c),
                             static_cast<char>(d)});
                }
            }
        }
    }
    EXPECT_GT(wellFormed, 10000);
    EXPECT_GT(illFormed, 10000);
}

TEST(I18NConverter, RefusesLoneSurrogatesInEveryEncoding)
{
    for (const char* encoding : {"UTF-8", "US-ASCII", "ISO-8859-1", "UTF-16", "KOI8-R", "UTF-32"}) {
        for (const std::u16string& lone : {std::u16string{0xD800}, std::u16string{0xDC00},
                                           std::u16string{0xD800, u'a'}, std::u16string{0xDC00, 0xD800}}) {
            EXPECT_NE(errorOf(u"text " + lone, encoding), "no error") << encoding;
            EXPECT_EQ(I18NConverter(encoding).firstUnexpressible(fromUnits(u"text " + lone)), 5) << encoding;
        }
    }
}

TEST(I18NConverter, NamesTheEncodingAndTheOffender)
{
    EXPECT_EQ(errorOf(u"ab\u0416", "ISO-8859-1"), "cannot express U+0416 in ISO-8859-1 (unit 2)");
    EXPECT_EQ(errorOf(u"\u00e9", "us-ascii"), "cannot express U+00E9 in us-ascii (unit 0)");
    EXPECT_EQ(errorOf(u"ab\U0001F600", "KOI8-R"), "cannot express U+1F600 in KOI8-R (unit 2)");
    EXPECT_EQ(errorOf({u'a', 0xD800}, nullptr), "cannot express U+D800 in UTF-8 (unit 1)");
    EXPECT_EQ(errorOf(u"a", "no-such-encoding"), "unknown encoding \"no-such-encoding\"");
    EXPECT_EQ(errorOf(u"a", ""), "unknown encoding \"\"");
    EXPECT_EQ(errorOf(u"a", std::string(100, 'x').c_str()),
              "unknown encoding \"" + std::string(100, 'x') + "\"");
    EXPECT_EQ(decodeErrorOf("abc\xC3(", nullptr), "ill-formed UTF-8: byte 0xC3 at offset 3");
    EXPECT_EQ(decodeErrorOf("a\x80", "US-ASCII"), "ill-formed US-ASCII: byte 0x80 at offset 1");
    EXPECT_EQ(decodeErrorOf("a", "UTF-16"), "ill-formed UTF-16: byte 0x61 at offset 0");
    EXPECT_EQ(decodeErrorOf("a\x82", "Shift_JIS"), "ill-formed Shift_JIS: byte 0x82");
    EXPECT_EQ(decodeErrorOf("a", "no-such-encoding"), "unknown encoding \"no-such-encoding\"");
}

TEST(I18NConverter, DropsNoInvisibleCharacters)
{
    for (const char* encoding : {"US-ASCII", "KOI8-R", "Shift_JIS", "ISO-8859-2"}) {
        EXPECT_EQ(errorOf(u"ab\u200Bc", encoding),
                  std::string("cannot express U+200B in ") + encoding + " (unit 2)");
    }
}

TEST(I18NConverter, KnowsNamesInAnyCaseAndUnderTheirAliases)
{
    for (const char* name : {"UTF-8", "utf-8", "utf8", "Utf8"}) {
        EXPECT_EQ(toBytes(u"\u0416", name).text, "\xD0\x96") << name;
    }
    for (const char* name : {"ISO-8859-1", "iso-8859-1", "latin1", "ISO_8859-1", "l1"}) {
        EXPECT_EQ(toBytes(u"\u00e9", name).text, "\xE9") << name;
    }
    for (const char* name : {"US-ASCII", "ascii", "us-ascii", "646"}) {
        EXPECT_EQ(errorOf(u"\u00e9", name), std::string("cannot express U+00E9 in ") + name + " (unit 0)");
    }
}

TEST(I18NConverter, WritesUtf16InMachineOrderWithoutAMark)
{
    const Bytes bytes = toBytes(u"A\U0001F600", "UTF-16");
    const std::u16string units = u"A\U0001F600";
    EXPECT_EQ(bytes.text, std::string(reinterpret_cast<const char*>(units.data()), 6));
    EXPECT_EQ(bytes.length, 8);
    EXPECT_EQ(unitsOf(I18NString(bytes.text.data(), 6, "utf-16")), units);
    const std::u16string marked = u"\uFEFFA";
    EXPECT_EQ(unitsOf(I18NString(reinterpret_cast<const char*>(marked.data()), 4, "UTF-16")), marked);
}

TEST(I18NConverter, EndsBytesWithTheNullOfTheEncoding)
{
    EXPECT_EQ(I18NConverter().sizeofLegacyNull(), 1);
    EXPECT_EQ(I18NConverter("ISO-8859-1").sizeofLegacyNull(), 1);
    EXPECT_EQ(I18NConverter("Shift_JIS").sizeofLegacyNull(), 1);
    EXPECT_EQ(I18NConverter("UTF-16").sizeofLegacyNull(), 2);
    EXPECT_EQ(I18NConverter("UTF-16BE").sizeofLegacyNull(), 2);
    EXPECT_EQ(I18NConverter("UTF-32").sizeofLegacyNull(), 4);
    EXPECT_EQ(toBytes(u"ab", "UTF-8").length, 3);
    EXPECT_EQ(toBytes(u"ab", "UTF-16LE").length, 6);
    EXPECT_EQ(toBytes(u"ab", "UTF-32LE").length, 12);
    EXPECT_EQ(toBytes(u"", "UTF-32LE").length, 4);
}

TEST(I18NConverter, ConvertsZeroUnitsInStringsAndStopsAtThemInTerminatedText)
{
    const std::u16string units(u"a\0b", 3);
    EXPECT_EQ(toBytes(units, nullptr).text, std::string("a\0b", 3));
    const std::unique_ptr<char[]> bytes(I18NConverter().fromUnicode(units.c_str(), QRMI18NStringAllocator));
    EXPECT_STREQ(bytes.get(), "a");
}

TEST(I18NConverter, GivesAnEmptyStringForNullAndEmptyText)
{
    for (const char* encoding : {static_cast<const char*>(nullptr), "ISO-8859-1", "KOI8-R"}) {
        const I18NConverter converter(encoding);
        for (const char16_t* source : {static_cast<const char16_t*>(nullptr), u""}) {
            const std::unique_ptr<char[]> bytes(converter.fromUnicode(source, QRMI18NStringAllocator));
            ASSERT_NE(bytes, nullptr);
            EXPECT_STREQ(bytes.get(), "");
        }
    }
}

TEST(I18NConverter, TakesMemoryFromTheAllocatorOnce)
{
    struct Request
    {
        int calls = 0;
        std::size_t bytes = 0;
        char memory[1000];
    };
    const auto allocator = [](void* context, std::size_t bytes) -> void* {
        auto* const request = static_cast<Request*>(context);
        ++request->calls;
        request->bytes = bytes;
        return request->memory;
    };
    for (const char* encoding : {"UTF-8", "US-ASCII", "UTF-16", "KOI8-R"}) {
        Request request;
        EXPECT_EQ(I18NString(u"text").toBytes(encoding, nullptr, allocator, &request), request.memory);
        EXPECT_EQ(request.calls, 1);
        EXPECT_GE(request.bytes, 5u);
    }
}

TEST(I18NConverter, TellsTheLastCharacterOfTheEncodingsThatItConvertsItself)
{
    EXPECT_EQ(I18NConverter().lastDirect(), char32_t(0x10FFFF));
    EXPECT_EQ(I18NConverter("UTF-8").lastDirect(), char32_t(0x10FFFF));
    EXPECT_EQ(I18NConverter("latin1").lastDirect(), char32_t(0xFF));
    EXPECT_EQ(I18NConverter("us-ascii").lastDirect(), char32_t(0x7F));
    EXPECT_EQ(I18NConverter("UTF-16").lastDirect(), char32_t(0));
    EXPECT_EQ(I18NConverter("IBM037").lastDirect(), char32_t(0));
    EXPECT_EQ(I18NConverter("windows-1252").lastDirect(), char32_t(0));
}

TEST(I18NConverter, TellsItsName)
{
    EXPECT_EQ(I18NConverter().getEncoding(), nullptr);
    EXPECT_EQ(I18NConverter(nullptr).getEncoding(), nullptr);
    std::string name = "latin1";
    const I18NConverter converter(name.c_str());
    name = "changed";
    EXPECT_STREQ(converter.getEncoding(), "latin1");
    EXPECT_STREQ(I18NConverter(converter).getEncoding(), "latin1");
}

TEST(I18NConverter, FindsTheFirstCharacterThatCannotBeExpressed)
{
    const I18NString text(u"a\u0416b\U0001F600c");
    EXPECT_EQ(I18NConverter("UTF-8").firstUnexpressible(text), -1);
    EXPECT_EQ(I18NConverter("US-ASCII").firstUnexpressible(text), 1);
    EXPECT_EQ(I18NConverter("US-ASCII").firstUnexpressible(text, 2), 3);
    EXPECT_EQ(I18NConverter("KOI8-R").firstUnexpressible(text), 3);
    EXPECT_EQ(I18NConverter("KOI8-R").firstUnexpressible(text, 5), -1);
    EXPECT_EQ(I18NConverter("KOI8-R").firstUnexpressible(text, 100), -1);
    EXPECT_EQ(I18NConverter("US-ASCII").firstUnexpressible(text, -3), 1);
}

TEST(I18NConverter, ForgetsNothingAndLeavesNoStateAfterAnError)
{
    EXPECT_NE(errorOf(u"\u65e5\u0416\U0001F600", "ISO-2022-JP"), "no error");
    const Bytes once = toBytes(u"\u65e5a", "ISO-2022-JP");
    EXPECT_EQ(toBytes(u"\u65e5a", "ISO-2022-JP").text, once.text);
    EXPECT_EQ(once.text, "\x1b$BF|\x1b(Ba");
}

TEST(I18NConverter, GivesMemoryBackWhenItThrows)
{
    // The leak checker of the sanitizer build watches these.
    for (const char* encoding : {"US-ASCII", "KOI8-R", "UTF-16", "UTF-8"}) {
        EXPECT_NE(errorOf(std::u16string(300, u'\u4e2d') + std::u16string{0xD800}, encoding), "no error");
    }
}

TEST(I18NConverter, KeepsMoreEncodingsInUseThanItKeepsOpen)
{
    const char* const names[] = {"ISO-8859-2",   "ISO-8859-3",   "ISO-8859-4",   "ISO-8859-5",
                                 "ISO-8859-6",   "ISO-8859-7",   "ISO-8859-8",   "ISO-8859-9",
                                 "ISO-8859-10",  "ISO-8859-13",  "ISO-8859-14",  "ISO-8859-15",
                                 "windows-1250", "windows-1251", "windows-1252", "windows-1253",
                                 "windows-1254", "windows-1255", "KOI8-R",       "KOI8-U"};
    std::vector<I18NConverter> converters;
    for (const char* name : names) {
        converters.emplace_back(name);
    }
    for (int round = 0; round < 3; ++round) {
        for (const I18NConverter& converter : converters) {
            const std::unique_ptr<char[]> bytes(converter.fromUnicode(u"text", QRMI18NStringAllocator));
            EXPECT_STREQ(bytes.get(), "text");
        }
    }
}

TEST(I18NConverter, WorksInSeveralThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::vector<int> wrong(8, 0);
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        threads.emplace_back([&wrong, i] {
            const char* const encodings[] = {"KOI8-R", "windows-1251", "UTF-8", "ISO-8859-5"};
            for (int round = 0; round < 1000; ++round) {
                const char* const encoding = encodings[(static_cast<std::size_t>(round) + i) % 4];
                int length = 0;
                const std::unique_ptr<char[]> bytes(
                    I18NString(u"\u0416\u0417").toBytes(encoding, &length, QRMI18NStringAllocator, nullptr));
                wrong[i] +=
                    I18NString(bytes.get(), length - 1, encoding) == I18NString(u"\u0416\u0417") ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(8, 0));
}

} // namespace
