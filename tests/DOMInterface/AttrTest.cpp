#include "tests/support/TestDocument.h"

namespace {

TEST(Attr, TellsNameValueAndOwner)
{
    const QRMIDOM_Document document = documentOf("<a n='v'/>");
    const QRMIDOM_Attr attribute = document.getDocumentElement().getAttributeNode("n");
    EXPECT_EQ(attribute.getName(), I18NString("n"));
    EXPECT_EQ(attribute.getValue(), I18NString("v"));
    EXPECT_TRUE(attribute.getSpecified());
    EXPECT_TRUE(attribute.getOwnerElement() == document.getDocumentElement());
    I18NString filled("before");
    attribute.getName(filled);
    EXPECT_EQ(filled, I18NString("n"));
    attribute.getValue(filled);
    EXPECT_EQ(filled, I18NString("v"));
}

TEST(Attr, HasNoOwnerBeforeItIsAttached)
{
    QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Attr attribute = document.createAttribute("n");
    EXPECT_TRUE(attribute.getOwnerElement().isNull());
    EXPECT_TRUE(attribute.getSpecified());
    EXPECT_EQ(attribute.getValue(), I18NString(""));
    I18NString filled("before");
    attribute.getValue(filled);
    EXPECT_TRUE(filled.empty());
    attribute.setNodeValue("v");
    EXPECT_EQ(attribute.getValue(), I18NString("v"));
}

TEST(Attr, IsNotSpecifiedWhenItIsADefault)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ATTLIST a n CDATA 'd'>]><a/>");
    const QRMIDOM_Attr attribute = document.getDocumentElement().getAttributeNode("n");
    EXPECT_FALSE(attribute.getSpecified());
    EXPECT_EQ(attribute.getValue(), I18NString("d"));
}

TEST(Attr, FailsEveryOperationOnANullHandle)
{
    const QRMIDOM_Attr null;
    I18NString text;
    EXPECT_EQ(assertionOf([&] { null.getName(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getSpecified(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getValue(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getValue(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getOwnerElement(); }), kNullHandle);
}

} // namespace
