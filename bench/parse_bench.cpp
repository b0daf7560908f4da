#include <fstream>
#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <pugixml.hpp>
#include <unistd.h>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

using documents::Sample;

// Each includes the release of the document.

void rawParse(benchmark::State& state, const Sample& sample)
{
    peers::Parser parser;
    for (auto _ : state) {
        const peers::Document document = parser.parse(sample.text);
        benchmark::DoNotOptimize(document.get());
    }
}

void bufferParse(benchmark::State& state, const Sample& sample)
{
    QRMIDOM_Parser parser;
    for (auto _ : state) {
        QRMIDOM_Document document;
        if (parser.parse(sample.text.data(), static_cast<int>(sample.text.size()), document) != 1) {
            state.SkipWithError("not parsed");
        }
        benchmark::DoNotOptimize(document.getDOM_NodeImpl());
    }
}

void streamParse(benchmark::State& state, const Sample& sample)
{
    QRMIDOM_Parser parser;
    for (auto _ : state) {
        std::istringstream stream(sample.text);
        QRMIDOM_Document document;
        if (parser.parse(stream, document) != 1) {
            state.SkipWithError("not parsed");
        }
        benchmark::DoNotOptimize(document.getDOM_NodeImpl());
    }
}

void fileParse(benchmark::State& state, const Sample& sample)
{
    const std::string name =
        (std::filesystem::temp_directory_path() / ("qrm-bench-" + std::to_string(::getpid()))).string();
    std::ofstream(name, std::ios::binary) << sample.text;
    QRMIDOM_Parser parser;
    for (auto _ : state) {
        QRMIDOM_Document document;
        if (parser.parse(name.c_str(), document) != 1) {
            state.SkipWithError("not parsed");
        }
        benchmark::DoNotOptimize(document.getDOM_NodeImpl());
    }
    std::filesystem::remove(name);
}

void libxmlParse(benchmark::State& state, const Sample& sample)
{
    for (auto _ : state) {
        xmlDoc* const document = xmlReadMemory(sample.text.data(), static_cast<int>(sample.text.size()), "",
                                               nullptr, XML_PARSE_HUGE);
        if (document == nullptr) {
            state.SkipWithError("not parsed");
        }
        xmlFreeDoc(document);
    }
}

void pugixmlParse(benchmark::State& state, const Sample& sample)
{
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(sample.text.data(), sample.text.size(), pugi::parse_full)) {
            state.SkipWithError("not parsed");
        }
    }
}

const bool registered = [] {
    for (const Sample& sample : documents::all()) {
        const auto add = [&sample](const char* side, void (*run)(benchmark::State&, const Sample&)) {
            benchmark::RegisterBenchmark(("parse/" + std::string(side) + "/" + sample.name).c_str(), run,
                                         std::cref(sample))
                ->Unit(benchmark::kMillisecond);
        };
        add("raw", rawParse);
        add("buffer", bufferParse);
        add("file", fileParse);
        add("stream", streamParse);
        add("libxml2", libxmlParse);
        add("pugixml", pugixmlParse);
    }
    return true;
}();

} // namespace
