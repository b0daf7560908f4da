#include <functional>
#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Text.h>
#include <benchmark/benchmark.h>
#include <xercesc/util/XMLString.hpp>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;

/// A document with one more element at its end, and what to find that by.
struct Haystack
{
    QRMIDOM_Document document;
    I18NString commonTag; // of many elements, the last one as well

    static constexpr const char* kTag = "needle";
    static constexpr const char* kUri = "urn:needle";
    static constexpr const char* kAttribute = "is-needle";
    static constexpr const char* kText = "the needle";
};

/// Ends the document with an element that is like others but for an attribute and its text, and one with a name of its
/// own.
void hide(Haystack& haystack)
{
    QRMIDOM_Element root = haystack.document.getDocumentElement();
    QRMIDOM_Element needle = haystack.document.createElement(haystack.commonTag);
    needle.setAttribute(Haystack::kAttribute, "yes");
    needle.appendChild(haystack.document.createTextNode(Haystack::kText));
    root.appendChild(needle);
    root.appendChild(haystack.document.createElementNS(Haystack::kUri, Haystack::kTag));
}

Haystack parsed(const documents::Sample& sample)
{
    Haystack haystack;
    QRMIDOM_Parser().parse(sample.text.data(), static_cast<int>(sample.text.size()), haystack.document);
    QRMIDOM_Node last = haystack.document.getDocumentElement().getLastChild();
    while (last.getNodeType() != DOMNode::ELEMENT_NODE) {
        last = last.getPreviousSibling();
    }
    haystack.commonTag = last.getNodeName();
    hide(haystack);
    return haystack;
}

/// Elements within elements.
Haystack deep()
{
    Haystack haystack;
    haystack.document = QRMIDOM_DOMImplementation::getInstance().createDocument();
    haystack.commonTag = "e";
    QRMIDOM_Element inner = haystack.document.createElement("e");
    for (int i = 1; i < 20000; ++i) {
        QRMIDOM_Element outer = haystack.document.createElement("e");
        outer.appendChild(inner);
        inner = outer;
    }
    haystack.document.appendChild(inner);
    hide(haystack);
    return haystack;
}

/// The search as one writes it on raw pointers.
template <class Matches>
DOMElement* rawFind(const DOMNode* start, const Matches& matches)
{
    for (DOMNode* child = start->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (child->getNodeType() == DOMNode::ELEMENT_NODE) {
            auto* const element = static_cast<DOMElement*>(child);
            if (matches(element)) {
                return element;
            }
            if (DOMElement* const found = rawFind(element, matches)) {
                return found;
            }
        }
    }
    return nullptr;
}

using Make = std::function<Haystack()>;
using Find = DOMElement* (*)(const Haystack&);

/// Both sides find the element, or the run is of no use.
void run(benchmark::State& state, const Make& make, Find find)
{
    const Haystack haystack = make();
    for (auto _ : state) {
        DOMElement* const found = find(haystack);
        if (found == nullptr) {
            state.SkipWithError("nothing was found");
            return;
        }
        benchmark::DoNotOptimize(found);
    }
}

const I18NString kTag(Haystack::kTag);
const I18NString kUri(Haystack::kUri);
const I18NString kAttribute(Haystack::kAttribute);
const I18NString kYes("yes");
const I18NString kText(Haystack::kText);

bool is(const XMLCh* text, const I18NString& expected)
{
    return XMLString::equals(text, expected.getExternalBuffer());
}

template <class Matches>
DOMElement* rawFind(const Haystack& haystack, const Matches& matches)
{
    const xercesc::DOMDocument* const document = haystack.document;
    return rawFind(static_cast<const DOMNode*>(document), matches);
}

DOMElement* walkerFind(const Haystack& haystack)
{
    xercesc::DOMDocument* const document = haystack.document;
    xercesc::DOMTreeWalker* const walker =
        document->createTreeWalker(document, xercesc::DOMNodeFilter::SHOW_ELEMENT, nullptr, false);
    DOMNode* node = walker->nextNode();
    while (node != nullptr && !is(static_cast<DOMElement*>(node)->getTagName(), kTag)) {
        node = walker->nextNode();
    }
    walker->release();
    return static_cast<DOMElement*>(node);
}

DOMElement* rawNamespace(const Haystack& haystack)
{
    return rawFind(haystack, [](const DOMElement* element) {
        return is(element->getLocalName(), kTag) && is(element->getNamespaceURI(), kUri);
    });
}

DOMElement* rawAttribute(const Haystack& haystack)
{
    return rawFind(haystack, [&haystack](const DOMElement* element) {
        return is(element->getTagName(), haystack.commonTag)
               && is(element->getAttribute(kAttribute.getExternalBuffer()), kYes);
    });
}

DOMElement* rawText(const Haystack& haystack)
{
    return rawFind(haystack, [&haystack](const DOMElement* element) {
        if (!is(element->getTagName(), haystack.commonTag)) {
            return false;
        }
        std::u16string own;
        for (const DOMNode* child = element->getFirstChild(); child != nullptr;
             child = child->getNextSibling()) {
            if (child->getNodeType() == DOMNode::TEXT_NODE) {
                own += child->getNodeValue();
            }
        }
        return own == kText.getExternalBuffer();
    });
}

void addSearches(const std::string& sample, const Make& make)
{
    const auto add = [&](const char* name, Find find) {
        benchmark::RegisterBenchmark((name + ("/" + sample)).c_str(), [make, find](benchmark::State& state) {
            run(state, make, find);
        })->Unit(benchmark::kMicrosecond);
    };
    add("find_tag/walker", walkerFind);
    add("find_tag/helper",
        [](const Haystack& h) -> DOMElement* { return QRMIDOM_Helper::findFirstElement(h.document, kTag); });
    add("find_ns/raw", rawNamespace);
    add("find_ns/helper", [](const Haystack& h) -> DOMElement* {
        return QRMIDOM_Helper::findFirstElementNS(h.document, kUri, kTag);
    });
    add("find_attribute/raw", rawAttribute);
    add("find_attribute/helper", [](const Haystack& h) -> DOMElement* {
        return QRMIDOM_Helper::findElementWithAttribute(h.document, h.commonTag, kAttribute, kYes);
    });
    add("find_text/raw", rawText);
    add("find_text/helper", [](const Haystack& h) -> DOMElement* {
        return QRMIDOM_Helper::findChildElementWithText(h.document, h.commonTag, kText);
    });
}

constexpr const char16_t* kSteps[] = {u"settings", u"network", u"proxy", u"server", u"port"};

/// Each step stands behind some others in its parent.
QRMIDOM_Document settings()
{
    QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument();
    QRMIDOM_Element parent = document.createElement("configuration");
    document.appendChild(parent);
    for (const char16_t* const step : kSteps) {
        for (int i = 0; i < 10; ++i) {
            parent.appendChild(document.createElement("other"));
        }
        parent = parent.appendChild(document.createElement(step));
    }
    return document;
}

void rawPresentPath(benchmark::State& state)
{
    const QRMIDOM_Document document = settings();
    xercesc::DOMDocument* const raw = document;
    for (auto _ : state) {
        DOMElement* current = raw->getDocumentElement();
        for (const char16_t* const step : kSteps) {
            current = rawFind(current, [step](const DOMElement* element) {
                return XMLString::equals(element->getTagName(), step);
            });
        }
        benchmark::DoNotOptimize(current);
    }
}

void helperPresentPath(benchmark::State& state)
{
    const QRMIDOM_Document document = settings();
    const I18NString path("settings/network/proxy/server/port");
    for (auto _ : state) {
        benchmark::DoNotOptimize(QRMIDOM_Helper::findOrCreateElement(document, path));
    }
}

/// What is made is released again by the document's end; both sides make a document for each round.
void rawNewPath(benchmark::State& state)
{
    for (auto _ : state) {
        const peers::Document document(xercesc::DOMImplementation::getImplementation()->createDocument(
            nullptr, u"configuration", nullptr));
        DOMNode* current = document->getDocumentElement();
        for (const char16_t* const step : kSteps) {
            current = current->appendChild(document->createElement(step));
        }
        benchmark::DoNotOptimize(current);
    }
}

void helperNewPath(benchmark::State& state)
{
    const I18NString path("settings/network/proxy/server/port");
    for (auto _ : state) {
        QRMIDOM_Document document = QRMIDOM_DOMImplementation::getInstance().createDocument();
        document.appendChild(document.createElement("configuration"));
        benchmark::DoNotOptimize(QRMIDOM_Helper::findOrCreateElement(document, path));
    }
}

void write(benchmark::State& state, const documents::Sample& sample,
           void (*operation)(QRMIDOM_Node, std::ostream&, const char*))
{
    QRMIDOM_Document document;
    QRMIDOM_Parser().parse(sample.text.data(), static_cast<int>(sample.text.size()), document);
    std::ostringstream stream;
    for (auto _ : state) {
        stream.seekp(0);
        operation(document, stream, "UTF-8");
        benchmark::DoNotOptimize(stream.tellp());
    }
}

BENCHMARK(rawPresentPath)->Name("present_path/raw/settings");
BENCHMARK(helperPresentPath)->Name("present_path/helper/settings");
BENCHMARK(rawNewPath)->Name("new_path/raw/settings");
BENCHMARK(helperNewPath)->Name("new_path/helper/settings");

const bool registered = [] {
    for (const documents::Sample& sample : documents::all()) {
        addSearches(sample.name, [&sample] { return parsed(sample); });
        const auto add = [&sample](const char* side, auto operation) {
            benchmark::RegisterBenchmark(
                ("write_ns/" + std::string(side) + "/" + sample.name).c_str(),
                [&sample, operation](benchmark::State& state) { write(state, sample, operation); })
                ->Unit(benchmark::kMillisecond);
        };
        add("write", [](QRMIDOM_Node node, std::ostream& stream, const char* encoding) {
            QRMIDOM_Helper::write(node, stream, encoding);
        });
        add("write_ns", [](QRMIDOM_Node node, std::ostream& stream, const char* encoding) {
            QRMIDOM_Helper::writeNS(node, stream, encoding);
        });
    }
    addSearches("deep", deep);
    return true;
}();

} // namespace
