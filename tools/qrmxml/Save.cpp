#include "tools/qrmxml/Save.h"

#include <array>
#include <cctype>
#include <memory>
#include <vector>

#include <QRMCore/I18NConverter.h>
#include <QRMCore/QRMThrowable.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Attr.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NamedNodeMap.h>

#include "tools/qrmxml/Document.h"
#include "tools/qrmxml/Output.h"

namespace {

/// Whether an XML declaration can have the name.
bool isDeclarable(const std::string& encoding)
{
    for (const char unit : encoding) {
        const auto byte = static_cast<unsigned char>(unit);
        if (byte >= 0x80 || (std::isalnum(byte) == 0 && unit != '.' && unit != '_' && unit != '-')) {
            return false;
        }
    }
    return std::isalpha(static_cast<unsigned char>(encoding.front())) != 0;
}

std::string converted(const I18NString& text, const I18NConverter& converter)
{
    int length = 0;
    const std::unique_ptr<char[]> bytes(text.toBytes(converter, &length, QRMI18NStringAllocator, nullptr));
    return std::string(bytes.get(), static_cast<std::size_t>(length - converter.sizeofLegacyNull()));
}

/// Whether the bytes of ASCII characters mean these wherever they stand. Markup is written and escaped byte by byte,
/// so everything else, such as UTF-16, EBCDIC and encodings with shift sequences, would give a damaged document.
bool keepsMarkupApart(const I18NConverter& converter)
{
    if (converter.sizeofLegacyNull() != 1) {
        return false;
    }
    std::string ascii = "\t\n\r";
    for (char unit = ' '; unit <= '~'; ++unit) {
        ascii += unit;
    }
    if (converter.firstUnexpressible(ascii.c_str()) >= 0 || converted(ascii.c_str(), converter) != ascii) {
        return false;
    }
    // One sample of each kind that the shifting encodings have, with ASCII behind to notice what stays shifted.
    for (const char16_t* const sample : {u"\u00E9", u"\u0416", u"\u3042", u"\u6F22", u"\uD55C"}) {
        if (converter.firstUnexpressible(sample) >= 0) {
            continue;
        }
        std::string bytes = converted(I18NString(sample) + ascii.c_str(), converter);
        if (bytes.size() <= ascii.size() || bytes.substr(bytes.size() - ascii.size()) != ascii) {
            return false;
        }
        bytes.resize(bytes.size() - ascii.size());
        for (const char unit : bytes) {
            const auto byte = static_cast<unsigned char>(unit);
            // Later bytes of a character may be digits or lie in the columns of the letters.
            if (byte < 0x80 && std::isdigit(byte) == 0 && byte < '@') {
                return false;
            }
        }
    }
    return true;
}

/// What is refused here would be written wrong, or not at all, so it is told before anything is touched.
void checkEncoding(const std::string& encoding)
{
    const I18NConverter converter(encoding.c_str());
    if (!isDeclarable(encoding)) {
        throw Trouble("qrmxml", "no XML declaration can name the encoding \"" + encoding + "\"");
    }
    if (!keepsMarkupApart(converter)) {
        throw Trouble("qrmxml", "cannot write documents in " + encoding
                                    + ": only encodings that contain ASCII byte for byte can be written");
    }
}

/// What of a node is written as it is, and how to call it. Text and the values of attributes are not among it: there
/// references stand for what the encoding does not have.
struct Verbatim
{
    const char* kind;
    I18NString text;
};

std::vector<Verbatim> verbatimsOf(const QRMIDOM_Node& node)
{
    switch (node.getNodeType()) {
    case 1: {
        std::vector<Verbatim> names = {{"the element name", node.getNodeName()}};
        const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
        for (unsigned long i = 0; i < attributes.getLength(); ++i) {
            names.push_back({"the attribute name", attributes.item(i).getNodeName()});
        }
        return names;
    }
    case 4: return {{"the CDATA section", node.getNodeValue()}};
    case 5: return {{"the entity name", node.getNodeName()}};
    case 7: return {{"the instruction name", node.getNodeName()}, {"the instruction", node.getNodeValue()}};
    case 8: return {{"the comment", node.getNodeValue()}};
    case 10: {
        const QRMIDOM_DocumentType type = node;
        return {{"the document type name", type.getName()},
                {"the public identifier", type.getPublicId()},
                {"the system identifier", type.getSystemId()},
                {"the internal subset", type.getInternalSubset()}};
    }
    default: return {};
    }
}

/// The first piece of the document that cannot be written, in its own words; empty where there is none.
std::string firstUnexpressible(const QRMIDOM_Document& document, const std::string& encoding)
{
    const I18NConverter converter(encoding.c_str());
    QRMIDOM_Node node = document;
    int depth = 0;
    do {
        for (const Verbatim& piece : verbatimsOf(node)) {
            if (converter.firstUnexpressible(piece.text) >= 0) {
                return std::string(piece.kind) + " \"" + shortened(piece.text) + "\"";
            }
        }
    } while (moveOn(node, depth, true));
    return "";
}

} // namespace

void checkSaving(const SaveOptions& options, const std::string& file)
{
    if (options.inPlace && file == "-") {
        throw Trouble(file, "standard input cannot be written in place");
    }
    checkEncoding(options.encoding);
}

void save(const QRMIDOM_Document& document, const SaveOptions& options, const std::string& file)
{
    try {
        Output output(options.inPlace ? file : options.output);
        if (options.namespaces) {
            QRMIDOM_Helper::writeNS(document, output.stream(), options.encoding.c_str());
        } else {
            QRMIDOM_Helper::write(document, output.stream(), options.encoding.c_str());
        }
        output.commit();
    } catch (const I18NConversionError& error) {
        const std::string piece = firstUnexpressible(document, options.encoding);
        throw Trouble(file, error.what() + (piece.empty() ? "" : ": " + piece));
    }
}
