#include <QRMCore/I18NConverter.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

int runWrite(const WriteOptions& options)
{
    if (options.inPlace && options.file == "-") {
        throw Trouble(options.file, "standard input cannot be written in place");
    }
    // An encoding that is not known is told before anything is touched.
    const I18NConverter known(options.encoding.c_str());

    QRMIDOM_Parser parser;
    prepare(parser, options.read);
    QRMIDOM_Document document;
    const int status = parseFile(parser, options.file, options.read, document);
    if (status == kDone) {
        Output output(options.inPlace ? options.file : options.output);
        QRMIDOM_Helper::write(document, output.stream(), options.encoding.c_str());
        output.commit();
    }
    return status;
}
