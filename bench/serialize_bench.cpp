#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

using documents::Sample;

template <class Name>
void rawWrite(benchmark::State& state, const Sample& sample, Name encoding)
{
    const peers::Document document = peers::Parser().parse(sample.text);
    peers::Serializer serializer;
    serializer.setEncoding(encoding);
    for (auto _ : state) {
        benchmark::DoNotOptimize(serializer.write(document.get()));
    }
}

void streamWrite(benchmark::State& state, const Sample& sample, const char* encoding)
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;
    parser.parse(sample.text.data(), static_cast<int>(sample.text.size()), document);
    std::ostringstream stream;
    for (auto _ : state) {
        stream.seekp(0);
        QRMIDOM_Helper::write(document, stream, encoding);
        benchmark::DoNotOptimize(stream.tellp());
    }
}

void libxmlWrite(benchmark::State& state, const Sample& sample)
{
    xmlDoc* const document =
        xmlReadMemory(sample.text.data(), static_cast<int>(sample.text.size()), "", nullptr, XML_PARSE_HUGE);
    for (auto _ : state) {
        xmlChar* text = nullptr;
        int length = 0;
        xmlDocDumpMemoryEnc(document, &text, &length, "UTF-8");
        benchmark::DoNotOptimize(length);
        xmlFree(text);
    }
    xmlFreeDoc(document);
}

void pugixmlWrite(benchmark::State& state, const Sample& sample)
{
    pugi::xml_document document;
    document.load_buffer(sample.text.data(), sample.text.size(), pugi::parse_full);
    std::ostringstream stream;
    for (auto _ : state) {
        stream.seekp(0);
        document.save(stream, "", pugi::format_raw, pugi::encoding_utf8);
        benchmark::DoNotOptimize(stream.tellp());
    }
}

const bool registered = [] {
    for (const Sample& sample : documents::all()) {
        const auto add = [&sample](const char* side, auto&& run) {
            benchmark::RegisterBenchmark(("serialize/" + std::string(side) + "/" + sample.name).c_str(), run)
                ->Unit(benchmark::kMillisecond);
        };
        add("raw_utf8", [&sample](benchmark::State& state) { rawWrite(state, sample, u"UTF-8"); });
        add("libxml2", [&sample](benchmark::State& state) { libxmlWrite(state, sample); });
        add("pugixml", [&sample](benchmark::State& state) { pugixmlWrite(state, sample); });
        add("utf8", [&sample](benchmark::State& state) { streamWrite(state, sample, "UTF-8"); });
        add("raw_latin1", [&sample](benchmark::State& state) { rawWrite(state, sample, u"ISO-8859-1"); });
        add("latin1", [&sample](benchmark::State& state) { streamWrite(state, sample, "ISO-8859-1"); });
    }
    return true;
}();

} // namespace
