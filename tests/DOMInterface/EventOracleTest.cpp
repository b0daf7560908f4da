// Real documents give the events that another parser, expat, gives for them.

#include <algorithm>
#include <fstream>
#include <map>

#include <expat.h>

#include "tests/support/RealDocuments.h"
#include "tests/support/RecordingParser.h"

namespace {

using Events = std::vector<std::string>;

/// Puts events into a form that both parsers can be brought to: attributes sorted, their names without prefixes, text in
/// one piece.
class Neutral
{
public:
    Events events;

    void start(const char* name, const char** atts)
    {
        std::map<std::string, std::string> attributes;
        for (; *atts != nullptr; atts += 2) {
            attributes[withoutPrefix(atts[0])] = atts[1];
        }
        std::string line = std::string("<") + name;
        for (const auto& [key, value] : attributes) {
            line += " " + key + "=" + value;
        }
        events.push_back(line);
    }
    void end(const char* name) { events.push_back(std::string(">") + name); }
    void text(const char* s, int length)
    {
        if (length != 0) {
            if (events.empty() || events.back()[0] != '\'') {
                events.emplace_back("'");
            }
            events.back().append(s, static_cast<std::size_t>(length));
        }
    }
    void comment(const char* data) { events.push_back(std::string("!") + data); }
    void instruction(const char* target, const char* data)
    {
        events.push_back(std::string("?") + target + " " + data);
    }
    void startNamespace(const char* prefix, const char* uri)
    {
        events.push_back(std::string("+") + orEmpty(prefix) + "=" + orEmpty(uri));
    }
    void endNamespace(const char* prefix) { events.push_back(std::string("-") + orEmpty(prefix)); }

    bool isInDoctype = false; // from which not every event comes through

private:
    static const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

    static std::string withoutPrefix(const std::string& name)
    {
        const std::size_t separator = name.find('\1');
        const std::size_t colon = name.find(':', separator);
        return separator == std::string::npos || colon == std::string::npos
                   ? name
                   : name.substr(0, separator + 1) + name.substr(colon + 1);
    }
};

class Ours : public QRMISAX_Parser
{
public:
    using QRMISAX_Parser::parse;
    Neutral neutral;

    void startElement(const char* name, const char** atts) override { neutral.start(name, atts); }
    void endElement(const char* name) override { neutral.end(name); }
    void characterData(const char* s, int len) override { neutral.text(s, len); }
    void comment(const char* data) override { neutral.comment(data); }
    void processingInstruction(const char* target, const char* data) override
    {
        neutral.instruction(target, data);
    }
    void startNamespaceDecl(const char* prefix, const char* uri) override
    {
        neutral.startNamespace(prefix, uri);
    }
    void endNamespaceDecl(const char* prefix) override { neutral.endNamespace(prefix); }
};

Neutral& neutralOf(void* data)
{
    return *static_cast<Neutral*>(data);
}

bool parseByExpat(const std::string& document, Neutral& neutral)
{
    XML_Parser parser = XML_ParserCreateNS(nullptr, '\1');
    XML_SetUserData(parser, &neutral);
    XML_SetElementHandler(
        parser,
        [](void* data, const XML_Char* name, const XML_Char** atts) { neutralOf(data).start(name, atts); },
        [](void* data, const XML_Char* name) { neutralOf(data).end(name); });
    XML_SetCharacterDataHandler(
        parser, [](void* data, const XML_Char* s, int length) { neutralOf(data).text(s, length); });
    XML_SetCommentHandler(parser, [](void* data, const XML_Char* text) { neutralOf(data).comment(text); });
    XML_SetProcessingInstructionHandler(parser, [](void* data, const XML_Char* target, const XML_Char* text) {
        if (!neutralOf(data).isInDoctype) {
            neutralOf(data).instruction(target, text);
        }
    });
    XML_SetNamespaceDeclHandler(
        parser,
        [](void* data, const XML_Char* prefix, const XML_Char* uri) {
            neutralOf(data).startNamespace(prefix, uri);
        },
        [](void* data, const XML_Char* prefix) { neutralOf(data).endNamespace(prefix); });
    XML_SetDoctypeDeclHandler(
        parser,
        [](void* data, const XML_Char*, const XML_Char*, const XML_Char*, int) {
            neutralOf(data).isInDoctype = true;
        },
        [](void* data) { neutralOf(data).isInDoctype = false; });
    const bool parsed =
        XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return parsed;
}

void expectTheSame(const std::string& text, const std::string& name)
{
    Ours ours;
    ours.setLoadExternalDTD(0);
    Neutral expat;
    const bool parsed = ours.parse(text.data(), static_cast<int>(text.size())) == 1;
    ASSERT_EQ(parsed, parseByExpat(text, expat)) << name << ": " << ours.errorString();
    if (parsed) {
        const auto difference = std::mismatch(ours.neutral.events.begin(), ours.neutral.events.end(),
                                              expat.events.begin(), expat.events.end());
        ASSERT_TRUE(difference.first == ours.neutral.events.end() && difference.second == expat.events.end())
            << name << ", event " << difference.first - ours.neutral.events.begin() << ": "
            << (difference.first != ours.neutral.events.end() ? *difference.first : "(end)") << "\n"
            << (difference.second != expat.events.end() ? *difference.second : "(end)");
    }
}

TEST(EventOracle, AgreesOnEveryKindOfContent)
{
    expectTheSame(
        "<?xml version='1.0'?><!--before--><?p in front?><!DOCTYPE r [<!ENTITY e 'x<b t=\"1\">y</b>z'>"
        "<!ATTLIST r d CDATA 'default'><!--in the doctype-->]>"
        "<r xmlns='urn:d' xmlns:p='urn:p' p:a='1' a='2'>\n t <i/>&e;<p:c p:x=' 1\n2 ' xml:lang='en'>"
        "<d xmlns=''>\u00e9\U0001F600</d></p:c><![CDATA[<cdata>]]>&lt;&#65;<?pi data ?></r><!--after-->\n",
        "literal");
}

class RealEvents : public testing::TestWithParam<real_documents::Package>
{
};

TEST_P(RealEvents, AreThoseOfExpat)
{
    const auto documents = real_documents::of(GetParam());
    EXPECT_GE(documents.size(), GetParam().atLeast) << "is the package installed?";
    for (const auto& path : documents) {
        std::ifstream stream(path, std::ios::binary);
        expectTheSame(std::string(std::istreambuf_iterator<char>(stream), {}), path.string());
    }
}

INSTANTIATE_TEST_SUITE_P(Debian, RealEvents, testing::ValuesIn(real_documents::packages()),
                         [](const auto& package) {
                             std::string name = package.param.name;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

} // namespace
