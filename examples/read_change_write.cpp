// Reads a document, looks around in it, changes it and writes it: the usual road through the library.
//
//     read_change_write [FILE [OUT]]
//
// FILE is a document like library.xml beside this source, which is read where none is named. The result goes to the
// file OUT, or to standard output.

#include <iostream>

#include <QRMCore/I18NString.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_CDATASection.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Comment.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Document.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DocumentType.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_NodeList.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Text.h>

namespace {

const I18NString kLibrary("urn:example:library");
const I18NString kDublinCore("http://purl.org/dc/elements/1.1/");

/// A new element with a text in it. It has no parent yet.
QRMIDOM_Element textElement(QRMIDOM_Document& doc, const I18NString& ns, const I18NString& name,
                            const I18NString& text)
{
    QRMIDOM_Element element = doc.createElementNS(ns, name);
    element.appendChild(doc.createTextNode(text));
    return element;
}

/// The text of the first child element of that name; empty where there is none.
I18NString childText(const QRMIDOM_Element& parent, const I18NString& ns, const I18NString& localName)
{
    const QRMIDOM_Node child = parent.getElementsByTagNameNS(ns, localName).item(0);
    return child.isNull() || !child.hasChildNodes() ? I18NString() : child.getFirstChild().getNodeValue();
}

void look(const QRMIDOM_Document& doc)
{
    const QRMIDOM_Element library = doc.getDocumentElement();
    std::cout << "Books of " << library.getAttribute("name") << ":\n";

    // To visit all children go from sibling to sibling. Text between elements is a child, too.
    for (QRMIDOM_Node child = library.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        if (child.getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            const QRMIDOM_Element book = child;
            std::cout << "  " << book.getAttribute("id") << ": " << childText(book, kDublinCore, "title")
                      << " (" << book.getAttribute("status") << ")\n";
        }
    }
}

void change(QRMIDOM_Document& doc)
{
    QRMIDOM_Element library = doc.getDocumentElement();

    // The document type says which attribute is an ID, so elements can be found by theirs.
    QRMIDOM_Element book = doc.getElementById("bulgakov");
    if (!book.isNull()) {
        book.removeAttribute("status"); // the default of the document type takes its place: "here"
    }

    // Make nodes by the document, then put them where they belong.
    QRMIDOM_Element added = doc.createElementNS(kLibrary, "book");
    added.setAttribute("id", "carroll");
    added.setAttributeNS("http://www.w3.org/XML/1998/namespace", "xml:lang", "en");
    added.appendChild(textElement(doc, kDublinCore, "dc:title", "Through the Looking-Glass"));
    added.appendChild(textElement(doc, kDublinCore, "dc:creator", "Lewis Carroll"));
    QRMIDOM_Element note = doc.createElementNS(kLibrary, "note");
    note.appendChild(doc.createCDATASection("1 < 2 && 2 < 3"));
    added.appendChild(note);

    // Before the first book, or at the end where there is none. White space is text like any other.
    const QRMIDOM_Node first = library.getElementsByTagNameNS(kLibrary, "book").item(0);
    const QRMIDOM_Node lineBreak = doc.createTextNode("\n  ");
    library.insertBefore(doc.createComment(" new this week "), first);
    library.insertBefore(lineBreak, first);
    library.insertBefore(added, first);
    library.insertBefore(lineBreak.cloneNode(0), first);

    // What is taken out of the tree still belongs to the document; here with the line break before it.
    QRMIDOM_Element gone = doc.getElementById("natsume");
    if (!gone.isNull()) {
        library.removeChild(gone.getPreviousSibling());
        library.removeChild(gone);
    }

    // What the tree does not allow is an exception with the code that the DOM gives it, and changes nothing.
    try {
        added.appendChild(library);
    } catch (const QRMIDOM_DOMException& error) {
        std::cout << "A book cannot contain its library: DOM error " << error.getCode() << '\n';
    }

    // The declarations have done their work. They would be written as escaped text, which no parser takes back.
    if (!doc.getDoctype().isNull()) {
        doc.removeChild(doc.getDoctype());
    }
}

/// All that holds handles is in here: they have to be gone when the library is stopped.
int run(const char* fileName, const char* outputName)
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document doc;
    if (parser.parse(fileName, doc) == 0) {
        // A file that cannot be opened is refused before there is anything to record.
        if (parser.getErrorCode() == 0) {
            std::cerr << fileName << ": error: cannot be opened\n";
        } else {
            std::cerr << fileName << ':' << parser.getCurrentLineNumber() << ':'
                      << parser.getCurrentColumnNumber() << ": error: " << parser.errorString() << '\n';
        }
        return 1;
    }
    look(doc);
    change(doc);
    if (outputName != nullptr) {
        QRMIDOM_Helper::write(doc, outputName, "UTF-8");
    } else {
        QRMIDOM_Helper::write(doc, std::cout, "UTF-8");
    }
    return std::cout ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QRMIDOM_DOMImplementation::initialize();
    int status = 1;
    try {
        status = run(argc > 1 ? argv[1] : SAMPLE_DOCUMENT, argc > 2 ? argv[2] : nullptr);
    } catch (const QRMThrowable& error) {
        std::cerr << error.what() << '\n';
    } catch (const QRMIDOM_DOMException& error) { // not one of the family's other errors
        std::cerr << "DOM error " << error.getCode() << '\n';
    }
    QRMIDOM_DOMImplementation::terminate();
    return status;
}
