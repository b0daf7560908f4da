#include <type_traits>

#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>

#include "QRMCore/QRMThrowable.h"
#include "tests/support/RecordingParser.h"

namespace {

using Events = std::vector<std::string>;
using xercesc::SAXParseException;

class EventBridge : public testing::Test
{
protected:
    RecordingParser parser;

    Events eventsOf(const std::string& text)
    {
        EXPECT_EQ(parser.parseText(text), 1) << parser.errorString();
        return parser.events;
    }
};

TEST_F(EventBridge, DeliversADefaultNamespaceInOrder)
{
    EXPECT_EQ(eventsOf("<a xmlns='urn:x' b='1'/>"), (Events{"+=urn:x", "<urn:x|a b=1", ">urn:x|a", "-"}));
}

TEST_F(EventBridge, NamesElementsByLocalNameAndAttributesByPrefixedName)
{
    EXPECT_EQ(
        eventsOf("<p:a xmlns:p='urn:a' xmlns:q='urn:q' p:id='1' q:id='2' id='3' xml:lang='en'/>"),
        (Events{"+p=urn:a", "+q=urn:q",
                "<urn:a|a urn:a|p:id=1 urn:q|q:id=2 id=3 http://www.w3.org/XML/1998/namespace|xml:lang=en",
                ">urn:a|a", "-q", "-p"}));
}

TEST_F(EventBridge, GivesAnElementWithoutAttributesAnEmptyArray)
{
    struct Looking : QRMISAX_Parser
    {
        using QRMISAX_Parser::parse;
        bool wasEmpty = false;
        void startElement(const char*, const char** atts) override
        {
            wasEmpty = atts != nullptr && *atts == nullptr;
        }
    } looking;
    EXPECT_EQ(looking.parse("<a/>", 4), 1);
    EXPECT_TRUE(looking.wasEmpty);
}

TEST_F(EventBridge, DeliversTextInUtf8)
{
    EXPECT_EQ(eventsOf("<a>\u00e9\u0416\U0001F600<b/>plain</a>"),
              (Events{"<a", "'\u00e9\u0416\U0001F600", "<b", ">b", "'plain", ">a"}));
}

TEST_F(EventBridge, DeliversCdataAsText)
{
    EXPECT_EQ(eventsOf("<a><![CDATA[<x>]]></a>"), (Events{"<a", "'<x>", ">a"}));
    EXPECT_EQ(eventsOf("<a>1<![CDATA[2]]>3&amp;4</a>"), (Events{"<a", "'1", "'2", "'3", "'&4", ">a"}));
}

TEST_F(EventBridge, DeliversCommentsAndInstructions)
{
    EXPECT_EQ(eventsOf("<!--before--><?p  data here ?><a><!--x--><?empty?></a><!----><?after d?>"),
              (Events{"!before", "?p data here ", "<a", "!x", "?empty ", ">a", "!", "?after d"}));
}

TEST_F(EventBridge, DeliversIgnorableWhiteSpaceAsText)
{
    parser.setFeature(QRMISAX_Parser::FEATURE_VALIDATION, 1);
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]><a>\n <b/> </a>"),
              (Events{"<a", "'\n ", "<b", ">b", "' ", ">a"}));
}

TEST_F(EventBridge, ExpandsEntitiesAndDefaults)
{
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ENTITY e 'x<b/>y'><!ATTLIST a d CDATA 'v'><!NOTATION n SYSTEM 's'>"
                       "<!ENTITY u SYSTEM 's' NDATA n>]><a>1&e;2</a>"),
              (Events{"<a d=v", "'1", "'x", "<b", ">b", "'y", "'2", ">a"}))
        << "declarations give no events";
}

TEST_F(EventBridge, GivesDeclarationsAsAttributesOnlyWhereAskedTo)
{
    parser.setFeature(QRMISAX_Parser::FEATURE_NAMESPACE_PREFIXES, 1);
    EXPECT_EQ(
        eventsOf("<p:a xmlns='d' xmlns:p='u'/>"),
        (Events{"+=d", "+p=u", "<u|a xmlns=d http://www.w3.org/2000/xmlns/|xmlns:p=u", ">u|a", "-p", "-"}));
}

TEST_F(EventBridge, TakesNamesFromQualifiedOnesWithoutNamespaces)
{
    parser.setFeature(QRMISAX_Parser::FEATURE_NAMESPACES, 0);
    EXPECT_EQ(eventsOf("<p:a xmlns:p='u' p:n='1' n='2'><b/></p:a>"),
              (Events{"<a xmlns:p=u p:n=1 n=2", "<b", ">b", ">a"}));
}

TEST_F(EventBridge, PutsACharacterTogetherThatXercesCutsInHalf)
{
    // A text is cut after so many units that an odd number of them before lets the cut fall into a pair.
    for (const int before : {0, 1, 2, 3}) {
        std::string text = std::string(static_cast<std::size_t>(before), 'x');
        for (int i = 0; i < 1100000; ++i) {
            text += "\U0001F600";
        }
        EXPECT_EQ(parser.parseText("<a>" + text + "</a>"), 1) << parser.errorString();
        const Events events = parser.joined();
        ASSERT_EQ(events.size(), 3u);
        EXPECT_TRUE(events[1] == "'" + text) << before;
        EXPECT_GT(parser.events.size(), 3u) << "it came in one piece";
    }
}

TEST_F(EventBridge, HoldsAHalfCharacterBackForTheNextText)
{
    DefaultHandlerImpl handler(&parser);
    handler.characters(u"a\xD83D", 2);
    handler.characters(u"\xDE00z", 2);
    handler.characters(u"\xD83D", 1);
    handler.ignorableWhitespace(u"\xDE00", 1);
    EXPECT_EQ(parser.events, (Events{"'a", "'\U0001F600", "'z", "'\U0001F600"}));
    handler.characters(u"\xD83D", 1);
    EXPECT_THROW(handler.comment(u"c", 1), I18NConversionError);
    handler.characters(u"ok", 2);
    handler.characters(u"\xD83D", 1);
    EXPECT_THROW(handler.characters(u"x", 1), I18NConversionError);
    EXPECT_THROW(handler.characters(u"\xDE00", 1), I18NConversionError);
    EXPECT_EQ(parser.events.back(), "'ok");
}

TEST_F(EventBridge, ReadsUpToTheTerminatorWhateverLengthIsSaid)
{
    DefaultHandlerImpl handler(&parser);
    handler.characters(u"abc", 1);
    handler.ignorableWhitespace(u"  ", 7);
    handler.comment(u"xyz", 0);
    handler.characters(u"", 0);
    EXPECT_EQ(parser.events, (Events{"'abc", "'  ", "!xyz", "'"}));
}

TEST_F(EventBridge, DoesNothingForWhatHasNoCallback)
{
    DefaultHandlerImpl handler(&parser);
    EXPECT_EQ(handler.resolveEntity(u"p", u"s"), nullptr);
    handler.startDocument();
    handler.endDocument();
    handler.resetDocument();
    handler.resetDocType();
    handler.setDocumentLocator(nullptr);
    handler.skippedEntity(u"e");
    handler.notationDecl(u"n", u"p", u"s");
    handler.unparsedEntityDecl(u"e", u"p", u"s", u"n");
    handler.warning(SAXParseException(u"w", nullptr, nullptr, 1, 2));
    handler.startCDATA();
    handler.endCDATA();
    EXPECT_EQ(parser.events, Events{});
}

TEST_F(EventBridge, ThrowsErrorsAsCopies)
{
    DefaultHandlerImpl handler(&parser);
    const SAXParseException exception(u"text", u"p", u"s", 3, 7);
    for (const bool isFatal : {false, true}) {
        try {
            isFatal ? handler.fatalError(exception) : handler.error(exception);
            FAIL() << "nothing was thrown";
        } catch (const SAXParseException& thrown) {
            EXPECT_NE(&thrown, &exception);
            EXPECT_EQ(thrown.getLineNumber(), 3u);
            EXPECT_EQ(thrown.getColumnNumber(), 7u);
            EXPECT_TRUE(xercesc::XMLString::equals(thrown.getMessage(), u"text"));
        }
    }
}

TEST_F(EventBridge, SetsTheCodeBackWhenAParseBegins)
{
    DefaultHandlerImpl handler(&parser);
    parser.setErrorCode(5);
    handler.resetErrors();
    EXPECT_EQ(parser.getErrorCode(), 0);
}

class NoAttributes : public xercesc::Attributes
{
public:
    XMLSize_t getLength() const override { return 0; }
    const XMLCh* getURI(const XMLSize_t) const override { return nullptr; }
    const XMLCh* getLocalName(const XMLSize_t) const override { return nullptr; }
    const XMLCh* getQName(const XMLSize_t) const override { return nullptr; }
    const XMLCh* getType(const XMLSize_t) const override { return nullptr; }
    const XMLCh* getValue(const XMLSize_t) const override { return nullptr; }
    bool getIndex(const XMLCh* const, const XMLCh* const, XMLSize_t&) const override { return false; }
    int getIndex(const XMLCh* const, const XMLCh* const) const override { return -1; }
    bool getIndex(const XMLCh* const, XMLSize_t&) const override { return false; }
    int getIndex(const XMLCh* const) const override { return -1; }
    const XMLCh* getType(const XMLCh* const, const XMLCh* const) const override { return nullptr; }
    const XMLCh* getType(const XMLCh* const) const override { return nullptr; }
    const XMLCh* getValue(const XMLCh* const, const XMLCh* const) const override { return nullptr; }
    const XMLCh* getValue(const XMLCh* const) const override { return nullptr; }
};

TEST_F(EventBridge, AsksForItsOwnerInEveryEventButOne)
{
    DefaultHandlerImpl orphan(nullptr);
    const NoAttributes attributes;
    const std::pair<int, std::function<void()>> sites[] = {
        {74, [&] { orphan.characters(u"x", 1); }},
        {83, [&] { orphan.comment(u"x", 1); }},
        {121, [&] { orphan.endElement(u"", u"a", u"a"); }},
        {129, [&] { orphan.ignorableWhitespace(u" ", 1); }},
        {158, [&] { orphan.startElement(u"", u"a", u"a", attributes); }},
        {200, [&] { orphan.startPrefixMapping(u"p", u"u"); }},
        {222, [&] { orphan.endPrefixMapping(u"p"); }},
        {276, [&] { orphan.resetErrors(); }},
    };
    for (const auto& [line, provoke] : sites) {
        try {
            provoke();
            ADD_FAILURE() << line;
        } catch (const QRMAssertError& error) {
            EXPECT_EQ(error.getCode(), 0);
            EXPECT_STREQ(error.getText(), "QRM_ASSERT(m_pOwner != NULL);");
            ASSERT_EQ(error.getBackTrace().size(), 1u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMISAX_Parser.cpp");
            EXPECT_EQ(error.getBackTrace()[0].lineNumber, line);
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
        }
    }
    orphan.setDocumentLocator(nullptr);
}

TEST_F(EventBridge, ReadsEmptyForNullStrings)
{
    DefaultHandlerImpl handler(&parser);
    const NoAttributes attributes;
    handler.startElement(nullptr, u"a", nullptr, attributes);
    handler.endElement(u"", u"", u"p:b");
    handler.processingInstruction(u"t", nullptr);
    handler.startPrefixMapping(nullptr, u"u");
    EXPECT_EQ(parser.events, (Events{"<a", ">b", "?t ", "+=u"}));
}

TEST_F(EventBridge, HasLongStringsAndManyAttributes)
{
    const std::string longName(5000, 'n');
    const std::string longUri = "urn:" + std::string(9000, 'u');
    std::string text = "<p:" + longName + " xmlns:p='" + longUri + "'";
    std::string expected = "<" + longUri + "|" + longName;
    for (int i = 0; i < 200; ++i) {
        const std::string number = std::to_string(i);
        text += " a" + number + "='" + std::string(static_cast<std::size_t>(i * 10), 'v') + "\u0416'";
        expected += " a" + number + "=" + std::string(static_cast<std::size_t>(i * 10), 'v') + "\u0416";
    }
    for (int round = 0; round < 3; ++round) {
        const Events events = eventsOf(text + "/>");
        ASSERT_EQ(events.size(), 4u);
        EXPECT_TRUE(events[1] == expected);
    }
}

static_assert(sizeof(DefaultHandlerImpl) == sizeof(xercesc::DefaultHandler) + sizeof(void*),
              "its owner is all that it has");
static_assert(!std::is_copy_constructible_v<QRMISAX_Parser>);

} // namespace
