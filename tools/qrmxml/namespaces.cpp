#include <map>
#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

std::string declaration(const I18NString& name, const I18NString& uri)
{
    std::ostringstream stream;
    stream << name << "=\"";
    QRMIDOM_Helper::write(stream, uri, "UTF-8");
    stream << '"';
    return visible(stream.str());
}

} // namespace

int runNamespaces(const NamespacesOptions& options)
{
    QRMIDOM_Document document;
    const int status = readDocument(options.file, options.read, document);
    if (status != kDone) {
        return status;
    }
    const QRMIDOM_Element element = options.tag.empty()
                                        ? document.getDocumentElement()
                                        : QRMIDOM_Helper::findFirstElement(document, options.tag.c_str());
    if (element.isNull()) {
        return kNo;
    }
    Output output("-");
    if (options.prefixOf) {
        const I18NString prefix = QRMIDOM_Helper::getNamespacePrefix(element, options.prefixOf->c_str());
        if (prefix.empty()) {
            return kNo;
        }
        output.stream() << prefix << '\n';
    } else {
        std::map<I18NString, I18NString> namespaces;
        QRMIDOM_Helper::getNamespaces(element, namespaces);
        for (const auto& [name, uri] : namespaces) {
            output.stream() << declaration(name, uri) << '\n';
        }
    }
    output.commit();
    return kDone;
}
