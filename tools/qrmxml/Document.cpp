#include "tools/qrmxml/Document.h"

#include "tools/qrmxml/Input.h"
#include "tools/qrmxml/Output.h"

namespace {

// More than any honest document needs, and few enough to expand at once.
constexpr unsigned int kMaxExpansions = 50000;

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
    Input input(name, options.noProgress);
    const int parsed = parser.parse(input, document);
    if (!input.failure().empty()) {
        throw Trouble(name, "cannot read: " + input.failure());
    }
    if (parsed == 0) {
        reportError(name, parser.errorString().toUtf8(), parser.getCurrentLineNumber(),
                    parser.getCurrentColumnNumber());
        return kNo;
    }
    return kDone;
}
