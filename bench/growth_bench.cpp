// The same work on documents of three sizes: the time for a record stays what it is.

#include <sstream>

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
    }
    return true;
}();

} // namespace
