#include <climits>

#include "tests/support/TestDocument.h"

namespace {

class CharacterData : public testing::Test
{
protected:
    QRMIDOM_Document document = documentOf("<a>0123456789</a>");
    QRMIDOM_Text text = document.getDocumentElement().getFirstChild();

    std::string data() const { return text.getData().toUtf8(); }
};

TEST_F(CharacterData, TellsItsTextAndLengthInUnits)
{
    EXPECT_EQ(text.getLength(), 10u);
    EXPECT_EQ(text.getData(), I18NString("0123456789"));
    I18NString filled("before");
    text.getData(filled);
    EXPECT_EQ(filled, I18NString("0123456789"));
    EXPECT_EQ(QRMIDOM_Text(document.createTextNode(u"\U0001F600")).getLength(), 2u);
}

TEST_F(CharacterData, GivesPiecesClippedAtTheEnd)
{
    EXPECT_EQ(text.substringData(2, 3), I18NString("234"));
    EXPECT_EQ(text.substringData(8, 100), I18NString("89"));
    EXPECT_EQ(text.substringData(8, ULONG_MAX), I18NString("89"));
    EXPECT_EQ(text.substringData(10, 1), I18NString(""));
    I18NString filled("before");
    text.substringData(2, 3, filled);
    EXPECT_EQ(filled, I18NString("234"));
    text.substringData(10, 5, filled);
    EXPECT_TRUE(filled.empty());
}

TEST_F(CharacterData, RefusesOffsetsBeyondTheEnd)
{
    I18NString filled("before");
    for (const unsigned long offset : {11UL, ULONG_MAX}) {
        EXPECT_EQ(domCodeOf([&] { text.substringData(offset, 1); }), 1);
        EXPECT_EQ(domCodeOf([&] { text.substringData(offset, 1, filled); }), 1);
        EXPECT_EQ(domCodeOf([&] { text.insertData(offset, "x"); }), 1);
        EXPECT_EQ(domCodeOf([&] { text.deleteData(offset, 1); }), 1);
        EXPECT_EQ(domCodeOf([&] { text.replaceData(offset, 1, "x"); }), 1);
        EXPECT_EQ(domCodeOf([&] { text.splitText(offset); }), 1);
    }
    EXPECT_EQ(filled, I18NString("before"));
    EXPECT_EQ(data(), "0123456789");
}

TEST_F(CharacterData, ChangesItsText)
{
    text.appendData("ab");
    EXPECT_EQ(data(), "0123456789ab");
    text.insertData(0, "<");
    text.insertData(13, ">");
    EXPECT_EQ(data(), "<0123456789ab>");
    text.deleteData(1, 10);
    EXPECT_EQ(data(), "<ab>");
    text.replaceData(1, 2, "xyz");
    EXPECT_EQ(data(), "<xyz>");
    text.replaceData(1, 1000, "");
    EXPECT_EQ(data(), "<");
    text.deleteData(0, text.getLength());
    EXPECT_EQ(data(), "");
    EXPECT_EQ(text.getLength(), 0u);
}

TEST_F(CharacterData, TakesAnEmptyArgumentForNoText)
{
    text.appendData("");
    text.insertData(3, "");
    text.replaceData(3, 0, "");
    text.deleteData(3, 0);
    EXPECT_EQ(data(), "0123456789");
}

TEST_F(CharacterData, RefusesToChangeReadOnlyText)
{
    const QRMIDOM_Document readOnly = documentOf("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>");
    QRMIDOM_Text inside = readOnly.getDocumentElement().getFirstChild().getFirstChild();
    EXPECT_EQ(domCodeOf([&] { inside.appendData("y"); }), 7);
    EXPECT_EQ(domCodeOf([&] { inside.insertData(0, "y"); }), 7);
    EXPECT_EQ(domCodeOf([&] { inside.deleteData(0, 1); }), 7);
    EXPECT_EQ(domCodeOf([&] { inside.replaceData(0, 1, "y"); }), 7);
    EXPECT_EQ(domCodeOf([&] { inside.splitText(0); }), 7);
    EXPECT_EQ(inside.getData(), I18NString("x"));
}

TEST_F(CharacterData, SplitsText)
{
    const QRMIDOM_Text rest = text.splitText(4);
    EXPECT_EQ(data(), "0123");
    EXPECT_EQ(rest.getData(), I18NString("456789"));
    EXPECT_TRUE(text.getNextSibling() == rest);
    EXPECT_EQ(rest.getRefCountedNodeImpl(), nullptr) << "it shares nothing";

    const QRMIDOM_Text end = text.splitText(text.getLength());
    EXPECT_EQ(end.getData(), I18NString(""));
    EXPECT_TRUE(text.getNextSibling() == end);
}

TEST_F(CharacterData, SplitsTextWithoutAParentAndCdata)
{
    QRMIDOM_Text loose = document.createTextNode("ab");
    EXPECT_EQ(loose.splitText(1).getData(), I18NString("b"));
    EXPECT_TRUE(loose.getNextSibling().isNull());
    QRMIDOM_CDATASection cdata = document.createCDATASection("ab");
    EXPECT_EQ(cdata.splitText(1).getNodeType(), 4);
}

TEST_F(CharacterData, HoldsAnyNodeUntilItIsUsed)
{
    const QRMIDOM_Comment comment(document.getDocumentElement());
    EXPECT_EQ(comment.getNodeType(), 1);
    QRMIDOM_CDATASection cdata;
    cdata = text;
    EXPECT_EQ(cdata.getData(), I18NString("0123456789"));
}

TEST_F(CharacterData, FailsEveryOperationOnANullHandle)
{
    QRMIDOM_Text null;
    I18NString out;
    EXPECT_EQ(assertionOf([&] { null.getLength(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getData(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getData(out); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.substringData(0, 0); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.substringData(0, 0, out); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.appendData(out); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.insertData(0, out); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.deleteData(0, 0); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.replaceData(0, 0, out); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.splitText(0); }), kNullHandle);
}

} // namespace
