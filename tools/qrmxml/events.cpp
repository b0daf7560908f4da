#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>
#include <nlohmann/json.hpp>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

using Json = nlohmann::ordered_json;

/// Thrown out of a callback when there is nobody to print for.
class NobodyReads
{
};

/// The name of an event, which is the URI, the byte 1 and the name, as {URI}NAME.
std::string universal(const std::string& name)
{
    const std::size_t separator = name.find('\1');
    if (separator == std::string::npos) {
        return name;
    }
    const std::size_t colon = name.find(':', separator);
    return "{" + name.substr(0, separator) + "}"
           + name.substr(colon == std::string::npos ? separator + 1 : colon + 1);
}

/// Prints every event as a line.
class Printer : public QRMISAX_Parser
{
public:
    explicit Printer(std::ostream& stream) : m_stream(stream) {}

    void startElement(const char* name, const char** atts) override
    {
        Json attributes = Json::object();
        for (; *atts != nullptr; atts += 2) {
            attributes[universal(atts[0])] = atts[1];
        }
        print({{"event", "start"}, {"name", universal(name)}, {"attributes", attributes}});
    }
    void endElement(const char* name) override { print({{"event", "end"}, {"name", universal(name)}}); }
    void characterData(const char* s, int len) override
    {
        print({{"event", "text"}, {"data", std::string(s, static_cast<std::size_t>(len))}});
    }
    void comment(const char* data) override { print({{"event", "comment"}, {"data", data}}); }
    void processingInstruction(const char* target, const char* data) override
    {
        print({{"event", "instruction"}, {"target", target}, {"data", data}});
    }
    void startNamespaceDecl(const char* prefix, const char* uri) override
    {
        print({{"event", "namespace"}, {"prefix", prefix}, {"uri", uri}});
    }
    void endNamespaceDecl(const char* prefix) override
    {
        print({{"event", "end-namespace"}, {"prefix", prefix}});
    }

protected:
    virtual std::string line(const Json& event) const { return event.dump(); }

private:
    void print(const Json& event)
    {
        m_stream << line(event) << '\n';
        if (!m_stream.good()) {
            throw NobodyReads();
        }
    }

    std::ostream& m_stream;
};

/// Prints for people: the event, its name, and what else it has, strings in quotes.
class PlainPrinter final : public Printer
{
public:
    using Printer::Printer;

private:
    std::string line(const Json& event) const override
    {
        std::string text = event["event"].get<std::string>();
        for (const auto& [key, value] : event.items()) {
            if (key == "name" || key == "target") {
                text += " " + value.get<std::string>();
            } else if (key == "attributes") {
                for (const auto& [name, content] : value.items()) {
                    text += " " + name + "=" + content.dump();
                }
            } else if (key != "event") {
                text += " " + value.dump();
            }
        }
        return visible(text);
    }
};

} // namespace

int runEvents(const EventsOptions& options)
{
    Output output("-");
    const std::unique_ptr<Printer> printer = options.json ? std::make_unique<Printer>(output.stream())
                                                          : std::make_unique<PlainPrinter>(output.stream());
    prepare(*printer, options.read);
    int status = kDone;
    try {
        status = parseFile(*printer, options.file, options.read);
    } catch (const NobodyReads&) { // which commit() reports
    }
    output.commit();
    return status;
}
