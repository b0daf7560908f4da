#include "QRMCore/I18NString.h"

#include <sstream>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "QRMCore/QRMThrowable.h"
#include "QRMCore/internal/UnitLength.h"
#include "tests/support/FailingAllocator.h"

namespace {

std::u16string unitsOf(const I18NString& text)
{
    EXPECT_EQ(text.getExternalBuffer()[text.length()], u'\0');
    return std::u16string(text.getExternalBuffer(), static_cast<std::size_t>(text.length()));
}

I18NString fromRaw(const std::u16string& units)
{
    return I18NString(units.data(), static_cast<int>(2 * units.size()), nullptr, nullptr);
}

TEST(I18NString, IsEmptyAtFirst)
{
    const I18NString text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.length(), 0);
    ASSERT_NE(text.getExternalBuffer(), nullptr);
    EXPECT_EQ(text.getExternalBuffer()[0], u'\0');
}

TEST(I18NString, TakesNullForEmpty)
{
    EXPECT_TRUE(I18NString(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(I18NString(static_cast<const char16_t*>(nullptr)).empty());
    EXPECT_TRUE(I18NString(nullptr, 10, nullptr, nullptr).empty());
    EXPECT_TRUE(I18NString(nullptr, 10, "UTF-8").empty());
    EXPECT_TRUE(I18NString("abc", -1, "UTF-8").empty());
    EXPECT_TRUE(I18NString(u"abc", -2, nullptr, nullptr).empty());
}

TEST(I18NString, TakesTheTerminatorInRawDataOrLeavesIt)
{
    const char16_t units[] = {u'a', u'b', 0};
    EXPECT_EQ(unitsOf(I18NString(units, 4, nullptr, nullptr)), u"ab");
    EXPECT_EQ(unitsOf(I18NString(units, 6, nullptr, nullptr)), u"ab");
    EXPECT_EQ(I18NString(units, 4, nullptr, nullptr), I18NString(units, 6, nullptr, nullptr));
}

TEST(I18NString, IgnoresAnOddLastByteOfRawData)
{
    EXPECT_EQ(unitsOf(I18NString(u"ab", 3, nullptr, nullptr)), u"a");
    EXPECT_EQ(unitsOf(I18NString(u"ab", 1, nullptr, nullptr)), u"");
}

TEST(I18NString, KeepsZeroUnitsInside)
{
    const char16_t units[] = {u'a', 0, u'b', 0, 0};
    EXPECT_EQ(unitsOf(I18NString(units, 10, nullptr, nullptr)), std::u16string(u"a\0b\0", 4));
}

TEST(I18NString, ReadsRawDataAtAnyAddress)
{
    char bytes[9] = {0, 'a', 0, 'b', 0, 'c', 0, 'd', 0};
    EXPECT_EQ(unitsOf(I18NString(bytes + 1, 8, nullptr, nullptr)), u"abcd");
}

TEST(I18NString, KeepsLoneSurrogatesWithoutACallback)
{
    const std::u16string lone = {u'a', 0xD800, u'b', 0xDC00};
    EXPECT_EQ(unitsOf(fromRaw(lone)), lone);
}

TEST(I18NString, AsksTheCallbackForEachLoneSurrogate)
{
    std::vector<char16_t> asked;
    const auto callback = [](void* context, char16_t unit) -> char32_t {
        static_cast<std::vector<char16_t>*>(context)->push_back(unit);
        return unit == 0xDC00 ? U'\U0001F600' : U'?';
    };
    const char16_t units[] = {0xD800, u'a', 0xD83D, 0xDE00, 0xDC00};
    EXPECT_EQ(unitsOf(I18NString(units, 10, callback, &asked)), u"?a\U0001F600\U0001F600");
    EXPECT_EQ(asked, (std::vector<char16_t>{0xD800, 0xDC00}));
}

class OfLength : public testing::TestWithParam<int>
{
};
INSTANTIATE_TEST_SUITE_P(I18NString, OfLength, testing::Range(0, 40));

TEST_P(OfLength, IsCopiedMovedAndSetUnitByUnit)
{
    std::u16string units;
    for (int i = 0; i < GetParam(); ++i) {
        units += static_cast<char16_t>(0x400 + i);
    }
    const I18NString original(units.c_str());
    EXPECT_EQ(unitsOf(original), units);
    EXPECT_EQ(unitsOf(fromRaw(units)), units);

    I18NString copy(original);
    EXPECT_EQ(unitsOf(copy), units);
    I18NString moved(std::move(copy));
    EXPECT_EQ(unitsOf(moved), units);
    EXPECT_EQ(unitsOf(copy), u""); // NOLINT(bugprone-use-after-move): it is defined to be empty

    for (const char16_t* before : {u"", u"short", u"longer than what is held in the object itself"}) {
        I18NString assigned(before);
        assigned = original;
        EXPECT_EQ(unitsOf(assigned), units);
        I18NString set(before);
        set.setTo(units.data(), static_cast<int>(2 * units.size()));
        EXPECT_EQ(unitsOf(set), units);
        I18NString moveAssigned(before);
        moveAssigned = I18NString(original);
        EXPECT_EQ(unitsOf(moveAssigned), units);
    }
}

TEST_P(OfLength, NeedsTheHeapOnlyBeyondFifteenUnits)
{
    const std::u16string units(static_cast<std::size_t>(GetParam()), u'x');
    failing_allocator::countAllocations();
    {
        I18NString text(units.c_str());
        I18NString copy(text);
        copy = text;
        I18NString set;
        set.setTo(units.data(), static_cast<int>(2 * units.size()));
    }
    EXPECT_EQ(failing_allocator::countAllocations(), GetParam() <= 15 ? 0 : 3);
}

TEST(I18NString, MayBeSetToAPieceOfItself)
{
    I18NString text(u"0123456789abcdefghijklmnopqrstuvwxyz");
    text.setTo(text.getExternalBuffer() + 4, 60);
    EXPECT_EQ(unitsOf(text), u"456789abcdefghijklmnopqrstuvwx");
    text.setTo(text.getExternalBuffer() + 2, 8);
    EXPECT_EQ(unitsOf(text), u"6789");
    text.setTo(text.getExternalBuffer() + 1, 6);
    EXPECT_EQ(unitsOf(text), u"789");
}

TEST(I18NString, SurvivesAssignmentToItself)
{
    I18NString text(u"longer than what is held in the object itself");
    const I18NString& same = text;
    text = same;
    EXPECT_EQ(text, I18NString(u"longer than what is held in the object itself"));
    text.setTo(same);
    text += same;
    EXPECT_EQ(text.length(), 90);
}

TEST(I18NString, KeepsItsStorageWhenSetAgain)
{
    const std::u16string units(1000, u'x');
    I18NString text(units.c_str());
    failing_allocator::countAllocations();
    for (int i = 0; i < 100; ++i) {
        text.setTo(units.data(), 2000);
        text.remove();
        EXPECT_TRUE(text.empty());
    }
    EXPECT_EQ(failing_allocator::countAllocations(), 0);
}

TEST(I18NString, GrowsByAppendingWithFewAllocations)
{
    I18NString text;
    const I18NString unit(u"x");
    failing_allocator::countAllocations();
    for (int i = 0; i < 100000; ++i) {
        text += unit;
    }
    EXPECT_LE(failing_allocator::countAllocations(), 16);
    EXPECT_EQ(text.length(), 100000);
    EXPECT_EQ(unitsOf(text), std::u16string(100000, u'x'));
}

TEST(I18NString, StaysAsItWasWhenThereIsNoMemory)
{
    I18NString text(u"abc");
    const I18NString longer(u"longer than what is held in the object itself");
    {
        const failing_allocator::FailNth fail(1);
        EXPECT_THROW(text += longer, std::bad_alloc);
    }
    {
        const failing_allocator::FailNth fail(1);
        EXPECT_THROW(text = longer, std::bad_alloc);
    }
    {
        const failing_allocator::FailNth fail(1);
        EXPECT_THROW(text.setTo(longer.getExternalBuffer(), 90), std::bad_alloc);
    }
    {
        const failing_allocator::FailNth fail(1);
        EXPECT_THROW(I18NString{longer}, std::bad_alloc);
    }
    EXPECT_EQ(unitsOf(text), u"abc");
}

TEST(I18NString, GivesUnitsAndZeroOutOfRange)
{
    const I18NString text(u"ab");
    EXPECT_EQ(text.charAt(0), u'a');
    EXPECT_EQ(text.charAt(1), u'b');
    EXPECT_EQ(text.charAt(2), u'\0');
    EXPECT_EQ(text.charAt(-1), u'\0');
}

TEST(I18NString, FindsAStringFromTheFrontAndFromTheBack)
{
    const I18NString text(u"abcabc");
    EXPECT_EQ(text.indexOf("bc"), 1);
    EXPECT_EQ(text.indexOf("bc", 2), 4);
    EXPECT_EQ(text.indexOf("bc", 5), -1);
    EXPECT_EQ(text.indexOf("bc", -7), 1);
    EXPECT_EQ(text.indexOf("bc", 100), -1);
    EXPECT_EQ(text.indexOf("x"), -1);
    EXPECT_EQ(text.indexOf(""), 0);
    EXPECT_EQ(text.indexOf("", 6), 6);
    EXPECT_EQ(text.indexOf("", 7), -1);
    EXPECT_EQ(text.lastIndexOf("bc"), 4);
    EXPECT_EQ(text.lastIndexOf("x"), -1);
    EXPECT_EQ(text.lastIndexOf(""), 6);
    EXPECT_TRUE(text.startsWith("abc"));
    EXPECT_TRUE(text.startsWith(""));
    EXPECT_FALSE(text.startsWith("bc"));
    EXPECT_FALSE(text.startsWith("abcabcd"));
}

TEST(I18NString, GivesPiecesClippedToTheString)
{
    const I18NString text(u"0123456789abcdefghij");
    EXPECT_EQ(text.substring(2, 3), I18NString("234"));
    EXPECT_EQ(text.substring(17), I18NString("hij"));
    EXPECT_EQ(text.substring(0), text);
    EXPECT_EQ(text.substring(18, 100), I18NString("ij"));
    EXPECT_EQ(text.substring(20), I18NString(""));
    EXPECT_EQ(text.substring(100), I18NString(""));
    EXPECT_EQ(text.substring(-2, 3), I18NString("0"));
    EXPECT_EQ(text.substring(-5, 3), I18NString(""));
    EXPECT_EQ(text.substring(5, 0), I18NString(""));
    EXPECT_EQ(text.substring(1, 2147483647), text.substring(1));
}

TEST(I18NString, IsOrderedByCodeUnit)
{
    EXPECT_LT(I18NString("a").compare("b"), 0);
    EXPECT_GT(I18NString("b").compare("a"), 0);
    EXPECT_EQ(I18NString("a").compare("a"), 0);
    EXPECT_LT(I18NString("a").compare("aa"), 0);
    EXPECT_LT(I18NString("").compare("a"), 0);
    // By unit, the surrogates of U+1F600 come before U+FFFD; by character they would not.
    EXPECT_LT(I18NString(u"\U0001F600"), I18NString(u"\uFFFD"));
    EXPECT_TRUE(I18NString("a") != I18NString("b"));
    EXPECT_FALSE(I18NString("a") < I18NString("a"));
}

TEST(I18NString, IsJoinedHashedAndPrinted)
{
    EXPECT_EQ(I18NString("a") + I18NString(u"\u0416"), I18NString(u"a\u0416"));
    std::unordered_set<I18NString> set = {"a", "b", "a"};
    EXPECT_EQ(set.size(), 2u);
    std::ostringstream stream;
    stream << I18NString(u"\u0416\U0001F600");
    EXPECT_EQ(stream.str(), "\u0416\U0001F600");
    EXPECT_EQ(I18NString(u"\u0416").toUtf8(), "\xD0\x96");
}

TEST(I18NString, CountsUnitsAtEveryAddress)
{
    alignas(16) char16_t units[80];
    for (int start = 0; start < 16; ++start) {
        for (int length = 0; length < 40; ++length) {
            for (char16_t& unit : units) {
                unit = u'x';
            }
            units[start + length] = 0;
            if (start > 0) {
                units[start - 1] = 0;
            }
            EXPECT_EQ(qrm::unitLength(units + start), static_cast<std::size_t>(length));
        }
    }
}

} // namespace
