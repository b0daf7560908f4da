#ifndef QRM_TESTS_RECORDINGPARSER_H
#define QRM_TESTS_RECORDINGPARSER_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"

/// Keeps each event as a line of its arguments; the byte that separates a namespace from a name is shown as "|".
class RecordingParser : public QRMISAX_Parser
{
public:
    using QRMISAX_Parser::parse;

    std::vector<std::string> events;
    std::function<void()> action; // called after each event

    void startElement(const char* name, const char** atts) override
    {
        std::string line = "<" + shown(name);
        for (; *atts != nullptr; atts += 2) {
            line += " " + shown(atts[0]) + "=" + atts[1];
        }
        add(line);
    }
    void endElement(const char* name) override { add(">" + shown(name)); }
    void notationDecl(const char*, const char*, const char*, const char*) override { add("notationDecl"); }
    void processingInstruction(const char* target, const char* data) override
    {
        add("?" + std::string(target) + " " + data);
    }
    void comment(const char* data) override { add("!" + std::string(data)); }
    void startCDataSection() override { add("startCDataSection"); }
    void endCDataSection() override { add("endCDataSection"); }
    void characterData(const char* s, int len) override
    {
        EXPECT_EQ(std::string(s).size(), static_cast<std::size_t>(len));
        add("'" + std::string(s, static_cast<std::size_t>(len)));
    }
    void startNamespaceDecl(const char* prefix, const char* uri) override
    {
        add("+" + std::string(prefix) + "=" + uri);
    }
    void endNamespaceDecl(const char* prefix) override { add("-" + std::string(prefix)); }
    void defaultHandler(const char*, int) override { add("defaultHandler"); }
    void unparseEntityDecl(const char*, const char*, const char*, const char*, const char*) override
    {
        add("unparseEntityDecl");
    }
    int notStandalone() override
    {
        add("notStandalone");
        return 1;
    }
    int externalEntityRef(const char*, const char*, const char*, const char*) override
    {
        add("externalEntityRef");
        return 1;
    }

    int parseText(const std::string& text)
    {
        events.clear();
        return parse(text.data(), static_cast<int>(text.size()));
    }

    /// The events with neighbouring pieces of text put together.
    std::vector<std::string> joined() const
    {
        std::vector<std::string> result;
        for (const std::string& event : events) {
            if (event[0] == '\'' && !result.empty() && result.back()[0] == '\'') {
                result.back() += event.substr(1);
            } else {
                result.push_back(event);
            }
        }
        return result;
    }

private:
    static std::string shown(std::string name)
    {
        for (char& byte : name) {
            byte = byte == '\1' ? '|' : byte;
        }
        return name;
    }

    void add(const std::string& event)
    {
        events.push_back(event);
        if (action) {
            action();
        }
    }
};

#endif
