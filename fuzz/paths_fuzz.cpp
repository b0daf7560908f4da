// Whatever the path: an element that was found or made is found again, and the tree then stays as it is.

#include <sstream>

#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Document.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h"
#include "QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h"
#include "fuzz/Fuzz.h"

namespace {

constexpr const char* kDocuments[] = {
    "<r/>",
    "<a><b><c k='v'>t</c></b><b/><c>u</c></a>",
    "<a xmlns='u' xmlns:p='u'><p:a k=''/><a><a><a>t</a></a></a></a>",
    "<!DOCTYPE r [<!ENTITY e '<a><b>t</b></a>'>]><r>&e;<a k='v'/><b>t<!-- -->t</b></r>",
};

std::string written(const QRMIDOM_Node& node)
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(node, stream, "UTF-8");
    return stream.str();
}

bool hasOnly(char16_t unit, const I18NString& text)
{
    for (int i = 0; i < text.length(); ++i) {
        if (text.charAt(i) != unit) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const unsigned choice = input.choice();
    const char* const text = kDocuments[choice % std::size(kDocuments)];
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    parser.parse(text, static_cast<int>(std::char_traits<char>::length(text)), document);
    QRMIDOM_Node start = document;
    if ((choice & 4) != 0) {
        start = document.getDocumentElement();
    }
    I18NString path;
    I18NString name;
    I18NString value;
    try {
        path = I18NString(input.text().c_str());
        name = I18NString(input.text().c_str());
        value = I18NString(input.text().c_str());
    } catch (const I18NConversionError&) {
        return 0;
    }
    const auto findOrCreate = [&] {
        switch (choice >> 3 & 3) {
        case 0: return QRMIDOM_Helper::findOrCreateElement(start, path);
        case 1: return QRMIDOM_Helper::findOrCreateElementWithAttribute(start, path, name, value);
        case 2: return QRMIDOM_Helper::findOrCreateElementWithText(start, path, value);
        default: return QRMIDOM_Helper::findOrCreateChildElement(document.getDocumentElement(), path);
        }
    };
    QRMIDOM_Element made;
    try {
        made = findOrCreate();
    } catch (const QRMIDOM_DOMException& error) {
        fuzz::require(error.getCode() == 5 || error.getCode() == 3 || error.getCode() == 7,
                      "code " + std::to_string(error.getCode()));
        return 0;
    }
    const bool isChild = (choice >> 3 & 3) == 3;
    fuzz::require(made.isNull() == (!isChild && hasOnly(u'/', path)),
                  "null where the path says something, or the other way round");
    if (made.isNull()) {
        return 0;
    }
    const std::string tree = written(document);
    fuzz::require(isChild || made.getRefCountedNodeImpl() == document.getRefCountedNodeImpl(), "the share");
    fuzz::require(findOrCreate() == made, "found again");
    fuzz::require(written(document) == tree, "it grew: " + tree);
    return 0;
}
