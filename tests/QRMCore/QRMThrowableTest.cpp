#include "QRMCore/QRMThrowable.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

TEST(QRMThrowable, KeepsCodeAndText)
{
    std::string text = "what happened";
    const QRMThrowable error(42, text.c_str());
    text = "changed";
    EXPECT_EQ(error.getCode(), 42);
    EXPECT_STREQ(error.getText(), "what happened");
    EXPECT_STREQ(error.what(), "what happened");
    EXPECT_TRUE(error.getBackTrace().empty());
}

TEST(QRMThrowable, SaysItsClassWhereThereIsNoText)
{
    EXPECT_EQ(QRMThrowable(0, nullptr).getText(), nullptr);
    EXPECT_STREQ(QRMThrowable(0, nullptr).what(), "QRMThrowable");
    EXPECT_STREQ(QRMAssertError(0, nullptr).what(), "QRMAssertError");
    EXPECT_STREQ(QRMSystemError(0, nullptr).what(), "QRMSystemError");
    EXPECT_STREQ(QRMOutOfMemoryError(0, nullptr).what(), "QRMOutOfMemoryError");
    EXPECT_STREQ(I18NConversionError(0, nullptr).what(), "I18NConversionError");
    EXPECT_STREQ(QRMThrowable(0, "").what(), "");
}

TEST(QRMThrowable, KeepsTheBackTraceOldestFirst)
{
    QRMThrowable error(0, nullptr);
    error.addBackTrace({"First.cpp", 1}, nullptr, "QRM_THROW");
    error.addBackTrace({"Second.cpp", 2}, "context", nullptr);
    ASSERT_EQ(error.getBackTrace().size(), 2u);
    EXPECT_EQ(error.getBackTrace()[0].fileName, "First.cpp");
    EXPECT_EQ(error.getBackTrace()[0].lineNumber, 1);
    EXPECT_EQ(error.getBackTrace()[0].context, "");
    EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
    EXPECT_EQ(error.getBackTrace()[1].fileName, "Second.cpp");
    EXPECT_EQ(error.getBackTrace()[1].lineNumber, 2);
    EXPECT_EQ(error.getBackTrace()[1].context, "context");
    EXPECT_EQ(error.getBackTrace()[1].macroName, "");
}

template <class Error>
class Hurled : public testing::Test
{
};
using Errors = testing::Types<QRMAssertError, QRMSystemError, QRMOutOfMemoryError, I18NConversionError>;
TYPED_TEST_SUITE(Hurled, Errors);

TYPED_TEST(Hurled, ArrivesByItsOwnTypeWithTheLocationAdded)
{
    TypeParam error(7, "text");
    error.addBackTrace({"Before.cpp", 1}, nullptr, nullptr);
    try {
        error.hurl({"Here.cpp", 23}, "context", "QRM_THROW");
        FAIL() << "it returned";
    } catch (const TypeParam& caught) {
        EXPECT_NE(&caught, &error);
        EXPECT_EQ(caught.getCode(), 7);
        EXPECT_STREQ(caught.getText(), "text");
        ASSERT_EQ(caught.getBackTrace().size(), 2u);
        EXPECT_EQ(caught.getBackTrace()[1].fileName, "Here.cpp");
        EXPECT_EQ(caught.getBackTrace()[1].lineNumber, 23);
        EXPECT_EQ(caught.getBackTrace()[1].context, "context");
        EXPECT_EQ(caught.getBackTrace()[1].macroName, "QRM_THROW");
    }
}

TYPED_TEST(Hurled, IsAThrowableAndAStandardException)
{
    EXPECT_THROW(TypeParam(0, nullptr).hurl({"a", 1}, nullptr, ""), QRMThrowable);
    EXPECT_THROW(TypeParam(0, nullptr).hurl({"a", 1}, nullptr, ""), std::exception);
}

TEST(QRMStdExceptionError, CarriesTheTextOfTheOther)
{
    QRMStdExceptionError error{std::runtime_error("other")};
    EXPECT_EQ(error.getCode(), 0);
    EXPECT_STREQ(error.getText(), "other");
    EXPECT_THROW(error.hurl({"a", 1}, nullptr, ""), QRMStdExceptionError);
}

} // namespace
