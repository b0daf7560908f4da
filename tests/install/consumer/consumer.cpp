// Uses each of the three libraries and an exception that crosses their border.

#include <iostream>

#include <QRMCore/I18NString.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <WQSStreams/WQSFileInputStream.h>

int main()
{
    QRMIDOM_DOMImplementation::initialize();
    {
        const char text[] = "<shelf><book/></shelf>";
        QRMIDOM_Parser parser;
        QRMIDOM_Document doc;
        std::cout << "parsed: " << parser.parse(text, sizeof text - 1, doc) << '\n';
        doc.getDocumentElement().setAttribute("place", I18NString("left & up"));
        QRMIDOM_Helper::write(doc, std::cout, "UTF-8");
        try {
            QRMIDOM_Node().getNodeName();
        } catch (const QRMAssertError& error) {
            std::cout << "null handle: " << error.getText() << '\n';
        }
        std::cout << "open: " << WQSFileInputStream("/no/such/file").isOpen() << '\n';
    }
    QRMIDOM_DOMImplementation::terminate();
}
