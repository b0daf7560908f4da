#include "tools/qrmxml/Document.h"

#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h>
#include <QRMUtils/XML/DOMInterface/WQSStreamInputSource.h>

#include "tools/qrmxml/Input.h"
#include "tools/qrmxml/Output.h"

namespace {

// More than any honest document needs, and few enough to expand at once.
constexpr unsigned int kMaxExpansions = 50000;

// And more of each other limit than any honest document needs.
constexpr unsigned int kMaxDepth = 10000;
constexpr unsigned int kMaxAmplification = 100;

/// Parses what the name stands for.
/// @param parse is given the source
template <class Parse>
int parseNamed(const std::string& name, const ReadOptions& options, Parse&& parse)
{
    // The input takes its progress bar away when it goes, before anything is reported.
    Input input(name, options.noProgress);
    WQSStreamInputSource source(input);
    if (name != "-") {
        try {
            source.setSystemId(QRMIDOM_XercesHelper::I18NStringToDOMString(I18NString(name.c_str())));
        } catch (const I18NConversionError&) {
            // Only a name in UTF-8 can be said to Xerces. Without one the document is read all the same.
        }
    }
    const int parsed = parse(source);
    if (!input.failure().empty()) {
        throw Trouble(name, "cannot read: " + input.failure());
    }
    return parsed;
}

void report(const std::string& name, I18NString text, int code, int line, int column, bool allowExternal)
{
    if (text.empty()) {
        text = "the document cannot be parsed";
    } else if (!allowExternal && text.startsWith("unable to open")) {
        text += " (nothing that a document names is loaded without --allow-external)";
    }
    // Errors of Xerces' own come with a line of its sources.
    const bool isPlaceKnown = code == -1;
    reportError(name, text.toUtf8(), isPlaceKnown ? line : 0, column);
}

template <class Parser>
void setLimits(Parser& parser)
{
    parser.setRefuseExternal(1);
    parser.setLoadExternalDTD(0);
    parser.setEntityExpansionLimit(kMaxExpansions);
    parser.setDepthLimit(kMaxDepth);
    parser.setAmplificationLimit(kMaxAmplification);
}

} // namespace

void prepare(QRMIDOM_Parser& parser, const ReadOptions& options)
{
    if (!options.allowExternal) {
        setLimits(parser);
    }
}

void prepare(QRMISAX_Parser& parser, const ReadOptions& options)
{
    if (!options.allowExternal) {
        setLimits(parser);
    }
}

int parseFile(QRMIDOM_Parser& parser, const std::string& name, const ReadOptions& options,
              QRMIDOM_Document& document)
{
    const int parsed = parseNamed(
        name, options, [&](xercesc::InputSource& source) { return parser.parse(source, document); });
    if (parsed == 0) {
        report(name, parser.errorString(), parser.getErrorCode(), parser.getCurrentLineNumber(),
               parser.getCurrentColumnNumber(), options.allowExternal);
        return kNo;
    }
    return kDone;
}

int parseFile(QRMISAX_Parser& parser, const std::string& name, const ReadOptions& options)
{
    const int parsed =
        parseNamed(name, options, [&](xercesc::InputSource& source) { return parser.parse(source); });
    if (parsed == 0) {
        report(name, parser.errorString(), parser.getErrorCode(), parser.getCurrentLineNumber(),
               parser.getCurrentColumnNumber(), options.allowExternal);
        return kNo;
    }
    return kDone;
}

int readDocument(const std::string& name, const ReadOptions& options, QRMIDOM_Document& document)
{
    QRMIDOM_Parser parser;
    prepare(parser, options);
    return parseFile(parser, name, options, document);
}

bool moveOn(QRMIDOM_Node& node, int& depth, bool enter)
{
    if (enter && node.hasChildNodes()) {
        node = node.getFirstChild();
        ++depth;
        return true;
    }
    while (depth > 0) {
        const QRMIDOM_Node next = node.getNextSibling();
        if (!next.isNull()) {
            node = next;
            return true;
        }
        node = node.getParentNode();
        --depth;
    }
    return false;
}
