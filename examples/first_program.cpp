#include <iostream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>

int main()
{
    QRMIDOM_DOMImplementation::initialize();
    {
        const char text[] = "<greeting to='world'>Hello &amp; welcome</greeting>";
        QRMIDOM_Parser parser;
        QRMIDOM_Document doc;
        if (parser.parse(text, sizeof text - 1, doc) == 0) {
            std::cerr << "line " << parser.getCurrentLineNumber() << ": " << parser.errorString() << '\n';
        } else {
            doc.getDocumentElement().setAttribute("to", "мир");
            QRMIDOM_Helper::write(doc, std::cout, "UTF-8");
        }
    } // all handles are gone before the library stops
    QRMIDOM_DOMImplementation::terminate();
}
