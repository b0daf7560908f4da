#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Document.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Element.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Text.h>
#include <benchmark/benchmark.h>

#include "bench/peers.h"

namespace {

constexpr int kElements = 1000000;

void rawBuild(benchmark::State& state)
{
    for (auto _ : state) {
        const peers::Document document(
            xercesc::DOMImplementation::getImplementation()->createDocument(nullptr, u"root", nullptr));
        xercesc::DOMElement* const root = document->getDocumentElement();
        for (int i = 0; i < kElements; ++i) {
            xercesc::DOMElement* const element = document->createElement(u"element");
            element->setAttribute(u"name", u"value");
            element->appendChild(document->createTextNode(u"some text"));
            root->appendChild(element);
        }
    }
}

void handleBuild(benchmark::State& state)
{
    const I18NString elementName("element");
    const I18NString attributeName("name");
    const I18NString value("value");
    const I18NString text("some text");
    for (auto _ : state) {
        QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument();
        QRMIDOM_Element root = document.createElement("root");
        document.appendChild(root);
        for (int i = 0; i < kElements; ++i) {
            QRMIDOM_Element element = document.createElement(elementName);
            element.setAttribute(attributeName, value);
            element.appendChild(document.createTextNode(text));
            root.appendChild(element);
        }
    }
}

BENCHMARK(rawBuild)->Name("build/raw/elements")->Unit(benchmark::kMillisecond);
BENCHMARK(handleBuild)->Name("build/handles/elements")->Unit(benchmark::kMillisecond);

} // namespace
