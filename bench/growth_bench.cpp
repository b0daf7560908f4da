// The same work on documents of three sizes: the time for a record stays what it is.

#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_DOMImplementation.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>
#include <benchmark/benchmark.h>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

QRMIDOM_Document treeOf(const std::string& text)
{
    QRMIDOM_Document document;
    QRMIDOM_Parser().parse(text.data(), static_cast<int>(text.size()), document);
    return document;
}

void rawParse(benchmark::State& state, const std::string& text)
{
    peers::Parser parser;
    for (auto _ : state) {
        const peers::Document document = parser.parse(text);
    }
}

void parse(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        const QRMIDOM_Document document = treeOf(text);
    }
}

void find(benchmark::State& state, const std::string& text)
{
    const QRMIDOM_Document document = treeOf(text);
    for (auto _ : state) {
        benchmark::DoNotOptimize(QRMIDOM_Helper::findFirstElement(document, "none"));
    }
}

void write(benchmark::State& state, const std::string& text)
{
    const QRMIDOM_Document document = treeOf(text);
    std::ostringstream stream;
    for (auto _ : state) {
        stream.seekp(0);
        QRMIDOM_Helper::writeNS(document, stream, "UTF-8");
    }
}

void events(benchmark::State& state, const std::string& text)
{
    QRMISAX_Parser parser;
    for (auto _ : state) {
        parser.parse(text.data(), static_cast<int>(text.size()));
    }
}

void clone(benchmark::State& state, const std::string& text)
{
    const QRMIDOM_Document document = treeOf(text);
    // A handle from a plain pointer owns its clones.
    const QRMIDOM_Node root(static_cast<xercesc::DOMNode*>(document.getDocumentElement()));
    for (auto _ : state) {
        const QRMIDOM_Node copy = root.cloneNode(1);
    }
}

void rawClone(benchmark::State& state, const std::string& text)
{
    const QRMIDOM_Document document = treeOf(text);
    const xercesc::DOMNode* const root = document.getDocumentElement();
    for (auto _ : state) {
        root->cloneNode(true)->release();
    }
}

void import(benchmark::State& state, const std::string& text)
{
    const QRMIDOM_Document document = treeOf(text);
    QRMIDOM_Element root = document.getDocumentElement();
    for (auto _ : state) {
        QRMIDOM_Document target = QRMIDOM_DOMImplementation::getInstance().createDocument();
        benchmark::DoNotOptimize(target.importNode(root, 1));
    }
}

/// Text that is cut by a comment in each record.
std::string cutText(const std::string& text)
{
    std::string result = "<r>";
    for (std::size_t at = text.find("<order "); at != std::string::npos; at = text.find("<order ", at + 1)) {
        result += "text<!-- -->";
    }
    return result + "</r>";
}

template <class Normalize>
void normalizeCutText(benchmark::State& state, const std::string& text, Normalize&& normalize)
{
    const std::string cut = cutText(text);
    for (auto _ : state) {
        state.PauseTiming();
        QRMIDOM_Document document = treeOf(cut);
        state.ResumeTiming();
        normalize(document);
        state.PauseTiming();
        document = NULL;
        state.ResumeTiming();
    }
}

void normalize(benchmark::State& state, const std::string& text)
{
    normalizeCutText(state, text, [](QRMIDOM_Document& document) { document.normalizeDocument(); });
}

void rawNormalize(benchmark::State& state, const std::string& text)
{
    normalizeCutText(state, text, [](QRMIDOM_Document& document) {
        xercesc::DOMDocument* const raw = document;
        for (const XMLCh* const kept : {xercesc::XMLUni::fgDOMCDATASections, xercesc::XMLUni::fgDOMComments,
                                        xercesc::XMLUni::fgDOMNamespaces}) {
            raw->getDOMConfig()->setParameter(kept, false);
        }
        raw->normalizeDocument();
    });
}

const bool registered = [] {
    for (const int records : {1000, 10000, 100000}) {
        const auto add = [records](const char* work, void (*run)(benchmark::State&, const std::string&)) {
            benchmark::RegisterBenchmark(
                ("growth/" + std::string(work) + "/" + std::to_string(records)).c_str(),
                [records, run](benchmark::State& state) { run(state, documents::records(records)); })
                ->Unit(benchmark::kMillisecond);
        };
        add("raw_parse", rawParse);
        add("parse", parse);
        add("find", find);
        add("write_ns", write);
        add("events", events);
        add("clone", clone);
        add("raw_clone", rawClone);
        add("import", import);
        add("normalize", normalize);
        if (records < 100000) { // which takes minutes
            add("raw_normalize", rawNormalize);
        }
    }
    return true;
}();

} // namespace
