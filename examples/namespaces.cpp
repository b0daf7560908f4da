// Makes a message in namespaces, finds its way about in it, and writes it so that it stands alone.

#include <iostream>
#include <map>

#include <QRMCore/I18NString.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMException.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Document.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Text.h>

namespace {

const I18NString kEnvelope("http://www.w3.org/2003/05/soap-envelope");
const I18NString kOrders("urn:example:orders");

/// Elements know their namespace and prefix from the start; no attribute declares these.
QRMIDOM_Document message()
{
    QRMIDOM_Document doc = QRMIDOM_DOMImplementation::getInstance().createDocument();
    QRMIDOM_Element envelope = doc.createElementNS(kEnvelope, "soap:Envelope");
    doc.appendChild(envelope);
    QRMIDOM_Element body = envelope.appendChild(doc.createElementNS(kEnvelope, "soap:Body"));
    QRMIDOM_Element order = body.appendChild(doc.createElementNS(kOrders, "o:order"));
    for (const char* const name : {"apples", "pears"}) {
        QRMIDOM_Element item = order.appendChild(doc.createElementNS(kOrders, "o:item"));
        item.setAttribute("kind", name);
        item.appendChild(doc.createTextNode("2 kg"));
    }
    return doc;
}

int run()
{
    QRMIDOM_Document doc = message();
    std::cout << "Without declarations no parser would take it:\n";
    QRMIDOM_Helper::write(doc.getDocumentElement(), std::cout, "UTF-8");
    std::cout << "\nWith those that the elements need:\n";
    QRMIDOM_Helper::writeNS(doc.getDocumentElement(), std::cout, "UTF-8");

    // Searches go through the whole subtree; they give the null handle where there is nothing to find.
    const QRMIDOM_Element order = QRMIDOM_Helper::findFirstElementNS(doc, kOrders, "order");
    std::cout << "\nA part of it, written to stand alone:\n";
    QRMIDOM_Helper::writeNS(order, std::cout, "UTF-8");
    const QRMIDOM_Element pears = QRMIDOM_Helper::findElementWithAttribute(order, "o:item", "kind", "pears");
    std::cout << "\nPears: " << QRMIDOM_Helper::getElementText(pears) << '\n';

    // Which prefixes stand for what is asked of the declarations that are there.
    const char text[] = "<r xmlns='urn:d' xmlns:a='urn:a'><s xmlns:b='urn:b' xmlns:a='urn:c'/></r>";
    QRMIDOM_Document other;
    if (QRMIDOM_Parser().parse(text, sizeof text - 1, other) == 0) {
        return 1;
    }
    const QRMIDOM_Node s = other.getDocumentElement().getFirstChild();
    std::map<I18NString, I18NString> namespaces;
    QRMIDOM_Helper::getNamespaces(s, namespaces);
    for (const auto& [name, uri] : namespaces) {
        std::cout << name << " is " << uri << '\n';
    }
    std::cout << "The prefix of urn:b is " << QRMIDOM_Helper::getNamespacePrefix(s, "urn:b") << '\n';

    // A path is made where it is missing, and found where it is there.
    QRMIDOM_Document settings = QRMIDOM_DOMImplementation::getInstance().createDocument();
    settings.appendChild(settings.createElement("settings"));
    QRMIDOM_Helper::findOrCreateElement(settings, "network/proxy").setAttribute("host", "localhost");
    QRMIDOM_Helper::findOrCreateElementWithText(settings, "network/proxy/port", "8080");
    QRMIDOM_Helper::findOrCreateElementWithText(settings, "network/proxy/port", "8080");
    QRMIDOM_Helper::write(settings.getDocumentElement(), std::cout, "UTF-8");
    std::cout << '\n';
    return std::cout ? 0 : 1;
}

} // namespace

int main()
{
    QRMIDOM_DOMImplementation::initialize();
    int status = 1;
    try {
        status = run();
    } catch (const QRMThrowable& error) {
        std::cerr << error.what() << '\n';
    } catch (const QRMIDOM_DOMException& error) {
        std::cerr << "DOM error " << error.getCode() << '\n';
    }
    QRMIDOM_DOMImplementation::terminate();
    return status;
}
