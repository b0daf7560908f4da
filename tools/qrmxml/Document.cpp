#include "tools/qrmxml/Document.h"

#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_XercesHelper.h>
#include <QRMUtils/XML/DOMInterface/WQSStreamInputSource.h>

#include "tools/qrmxml/Input.h"
#include "tools/qrmxml/Output.h"

namespace {

// More than any honest document needs, and few enough to expand at once.
constexpr unsigned int kMaxExpansions = 50000;

int parse(QRMIDOM_Parser& parser, const std::string& name, Input& input, QRMIDOM_Document& document)
{
    WQSStreamInputSource source(input);
    if (name != "-") {
        try {
            source.setSystemId(QRMIDOM_XercesHelper::I18NStringToDOMString(I18NString(name.c_str())));
        } catch (const I18NConversionError&) {
            // Only a name in UTF-8 can be said to Xerces. Without one the document is read all the same.
        }
    }
    return parser.parse(source, document);
}

void report(const QRMIDOM_Parser& parser, const std::string& name, bool allowExternal)
{
    I18NString text = parser.errorString();
    if (text.empty()) {
        text = "the document cannot be parsed";
    } else if (!allowExternal && text.startsWith("unable to open")) {
        text += " (nothing that a document names is loaded without --allow-external)";
    }
    // Errors of Xerces' own come with a line of its sources.
    const bool isPlaceKnown = parser.getErrorCode() == -1;
    reportError(name, text.toUtf8(), isPlaceKnown ? parser.getCurrentLineNumber() : 0,
                parser.getCurrentColumnNumber());
}

} // namespace

void prepare(QRMIDOM_Parser& parser, const ReadOptions& options)
{
    if (!options.allowExternal) {
        parser.setRefuseExternal(1);
        parser.setLoadExternalDTD(0);
        parser.setEntityExpansionLimit(kMaxExpansions);
    }
}

int parseFile(QRMIDOM_Parser& parser, const std::string& name, const ReadOptions& options,
              QRMIDOM_Document& document)
{
    int parsed = 0;
    {
        // The input takes its progress bar away when it goes, before anything is reported.
        Input input(name, options.noProgress);
        parsed = parse(parser, name, input, document);
        if (!input.failure().empty()) {
            throw Trouble(name, "cannot read: " + input.failure());
        }
    }
    if (parsed == 0) {
        report(parser, name, options.allowExternal);
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
