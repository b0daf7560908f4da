#include <gtest/gtest.h>

#include "QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h"

namespace {

using Bridge = QRMIDOM_XercesHelper;

TEST(XercesHelper, GivesAnEmptyStringForNullAndForNoUnits)
{
    EXPECT_TRUE(Bridge::DOMStringToI18NString(nullptr).empty());
    EXPECT_TRUE(Bridge::DOMStringToI18NString(u"").empty());
}

TEST(XercesHelper, EmptiesTheTargetForNullAndForNoUnits)
{
    for (const XMLCh* nothing : {static_cast<const XMLCh*>(nullptr), u""}) {
        I18NString target("before");
        Bridge::DOMStringToI18NString(nothing, target);
        EXPECT_TRUE(target.empty());
    }
}

TEST(XercesHelper, CopiesUnitsAndLeavesThemAsTheyAre)
{
    const XMLCh one[] = {u'a', 0};
    const XMLCh lone[] = {u'x', 0xD800, u'y', 0};
    EXPECT_EQ(Bridge::DOMStringToI18NString(one), I18NString("a"));
    EXPECT_EQ(Bridge::DOMStringToI18NString(lone), I18NString(lone));
    I18NString target("before");
    Bridge::DOMStringToI18NString(u"a longer text, beyond what is held inside", target);
    EXPECT_EQ(target, I18NString("a longer text, beyond what is held inside"));
}

TEST(XercesHelper, LendsTheUnitsOfAString)
{
    const I18NString text("abc");
    EXPECT_EQ(Bridge::I18NStringToDOMString(text), text.getExternalBuffer());
    XMLCh* filled = nullptr;
    Bridge::I18NStringToDOMString(text, filled);
    EXPECT_EQ(filled, text.getExternalBuffer());
}

TEST(XercesHelper, LendsNullOrAZeroUnitForAnEmptyString)
{
    const I18NString empty;
    EXPECT_EQ(Bridge::I18NStringToDOMString(empty), nullptr);
    XMLCh* filled = nullptr;
    Bridge::I18NStringToDOMString(empty, filled);
    ASSERT_NE(filled, nullptr);
    EXPECT_EQ(*filled, 0);
}

TEST(XercesHelper, MatchesUnitByUnit)
{
    EXPECT_TRUE(Bridge::MatchI18NString(nullptr, ""));
    EXPECT_TRUE(Bridge::MatchI18NString(u"", ""));
    EXPECT_TRUE(Bridge::MatchI18NString(u"abc", "abc"));
    EXPECT_FALSE(Bridge::MatchI18NString(nullptr, "a"));
    EXPECT_FALSE(Bridge::MatchI18NString(u"a", ""));
    EXPECT_FALSE(Bridge::MatchI18NString(u"a", "A"));
    EXPECT_FALSE(Bridge::MatchI18NString(u"ab", "abc"));
    EXPECT_FALSE(Bridge::MatchI18NString(u"\u00e9", u"e\u0301")) << "nothing is normalized";
}

TEST(XercesHelper, CountsUnits)
{
    const unsigned short units[] = {'a', 'b', 0, 'c', 0};
    EXPECT_EQ(u_strlen(units), 2);
    EXPECT_EQ(u_strlen(units + 2), 0);
    EXPECT_EQ(u_strlen(u"abc"), 3);
    EXPECT_EQ(u_strlen(u""), 0);
}

} // namespace
