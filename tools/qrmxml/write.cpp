#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Save.h"

int runWrite(const WriteOptions& options)
{
    checkSaving(options.save, options.file);
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status == kDone) {
        save(document, options.save, options.file);
    }
    return status;
}
