#include <algorithm>
#include <filesystem>
#include <sstream>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace fs = std::filesystem;

namespace {

/// Thrown when what is wrong with a schema has been told.
class BadSchema
{
};

const char* orNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

/// Reads a schema before it is used. Xerces passes silently over schemas that it cannot open, and would tell an error
/// in one as an error in the document.
/// @throws Trouble when the schema cannot be read, BadSchema when it is not well-formed
void tryToRead(const std::string& schema, const ReadOptions& options)
{
    if (schema == "-") {
        throw Trouble(schema, "a schema cannot come from standard input");
    }
    if (fs::is_fifo(schema)) {
        return; // It can be read once only.
    }
    QRMIDOM_Document document;
    if (readDocument(schema, options, document) != kDone) {
        throw BadSchema();
    }
}

/// Where Xerces finds a schema, whatever folder the document lies in: an absolute path or, since blanks separate
/// locations, a URL. URLs stay what they are.
std::string schemaLocation(const std::string& schema, const ReadOptions& options)
{
    if (schema.find("://") != std::string::npos) {
        return schema;
    }
    tryToRead(schema, options);
    std::string path = fs::absolute(schema);
    if (path.find_first_of(" \t\n\r") == std::string::npos) {
        return path;
    }
    std::string url = "file://";
    for (const char unit : path) {
        switch (unit) {
        case ' ': url += "%20"; break;
        case '\t': url += "%09"; break;
        case '\n': url += "%0A"; break;
        case '\r': url += "%0D"; break;
        case '#': url += "%23"; break;
        case '%': url += "%25"; break;
        case '?': url += "%3F"; break;
        default: url += unit;
        }
    }
    return url;
}

std::string schemaLocations(const std::string& pairs, const ReadOptions& options)
{
    std::string locations;
    std::istringstream words(pairs);
    for (std::string uri, schema; words >> uri;) {
        if (!(words >> schema)) {
            throw Trouble("qrmxml", "--schema-location: there is no schema file after " + uri);
        }
        locations += uri + ' ' + schemaLocation(schema, options) + ' ';
    }
    return locations;
}

int check(const std::string& file, const CheckOptions& options)
{
    QRMIDOM_Parser parser;
    prepare(parser, options.read);
    parser.setDoValidation(options.dtd || options.schema ? 1 : 0);
    parser.setDoSchema(options.schema ? 1 : 0);
    parser.setExternalSchemaLocation(orNull(options.schemaLocation));
    parser.setExternalNoNamespaceSchemaLocation(orNull(options.noNamespaceSchema));
    QRMIDOM_Document document;
    return parseFile(parser, file, options.read, document);
}

} // namespace

int runCheck(const CheckOptions& given)
{
    CheckOptions options = given;
    try {
        options.schemaLocation = schemaLocations(given.schemaLocation, given.read);
        if (!given.noNamespaceSchema.empty()) {
            options.noNamespaceSchema = schemaLocation(given.noNamespaceSchema, given.read);
        }
    } catch (const BadSchema&) {
        return kTrouble;
    }
    options.schema = given.schema || !options.schemaLocation.empty() || !options.noNamespaceSchema.empty();

    int worst = kDone;
    for (const std::string& file : options.files) {
        int status = kTrouble;
        try {
            status = check(file, options);
        } catch (const Trouble& trouble) {
            reportError(trouble.name(), trouble.what());
        }
        worst = std::max(worst, status);
    }
    return worst;
}
