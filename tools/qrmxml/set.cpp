#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"
#include "tools/qrmxml/Save.h"

namespace {

QRMIDOM_Element findOrCreate(const QRMIDOM_Element& root, const SetOptions& options)
{
    const I18NString path(options.path.c_str());
    if (options.attribute) {
        return QRMIDOM_Helper::findOrCreateElementWithAttribute(root, path, options.attribute->name.c_str(),
                                                                options.attribute->value.c_str());
    }
    if (options.text) {
        return QRMIDOM_Helper::findOrCreateElementWithText(root, path, options.text->c_str());
    }
    return QRMIDOM_Helper::findOrCreateElement(root, path);
}

} // namespace

int runSet(const SetOptions& options)
{
    checkSaving(options.save, options.file);
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status != kDone) {
        return status;
    }
    try {
        if (findOrCreate(document.getDocumentElement(), options).isNull()) {
            throw Trouble("qrmxml", "the path \"" + options.path + "\" names no element");
        }
    } catch (const QRMIDOM_DOMException& error) {
        if (error.getCode() == 5) {
            throw Trouble("qrmxml", "no element or attribute can be named like that: " + options.path
                                        + (options.attribute ? ", " + options.attribute->name : ""));
        }
        throw;
    }
    save(document, options.save, options.file);
    return kDone;
}
