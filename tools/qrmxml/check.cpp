#include <algorithm>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

const char* orNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

} // namespace

int runCheck(const CheckOptions& options)
{
    const bool schema =
        options.schema || !options.schemaLocation.empty() || !options.noNamespaceSchema.empty();
    QRMIDOM_Parser parser;
    prepare(parser, options.read);
    parser.setDoValidation(options.dtd || schema ? 1 : 0);
    parser.setDoSchema(schema ? 1 : 0);
    parser.setExternalSchemaLocation(orNull(options.schemaLocation));
    parser.setExternalNoNamespaceSchemaLocation(orNull(options.noNamespaceSchema));

    int worst = kDone;
    for (const std::string& file : options.files) {
        int status = kTrouble;
        try {
            QRMIDOM_Document document;
            status = parseFile(parser, file, options.read, document);
        } catch (const Trouble& trouble) {
            reportError(trouble.name(), trouble.what());
        }
        worst = std::max(worst, status);
    }
    return worst;
}
