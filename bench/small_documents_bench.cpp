#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMIDOM_Helper.h>
#include <QRMUtils/XML/DOMInterface/QRMIDOM_Parser.h>
#include <benchmark/benchmark.h>

#include "bench/documents.h"
#include "bench/peers.h"

namespace {

// Parse and write, document after document.
constexpr int kDocuments = 100000;

void rawReused(benchmark::State& state)
{
    for (auto _ : state) {
        peers::Parser parser;
        peers::Serializer serializer;
        for (int i = 0; i < kDocuments; ++i) {
            const peers::Document document = parser.parse(documents::small());
            benchmark::DoNotOptimize(serializer.write(document.get()));
        }
    }
}

void parseAndWrite(QRMIDOM_Parser& parser, std::ostringstream& stream)
{
    QRMIDOM_Document document;
    parser.parse(documents::small().data(), static_cast<int>(documents::small().size()), document);
    stream.seekp(0);
    QRMIDOM_Helper::write(document, stream, "UTF-8");
}

void oneParser(benchmark::State& state)
{
    for (auto _ : state) {
        QRMIDOM_Parser parser;
        std::ostringstream stream;
        for (int i = 0; i < kDocuments; ++i) {
            parseAndWrite(parser, stream);
        }
    }
}

void parserEach(benchmark::State& state)
{
    for (auto _ : state) {
        std::ostringstream stream;
        for (int i = 0; i < kDocuments; ++i) {
            QRMIDOM_Parser parser;
            parseAndWrite(parser, stream);
        }
    }
}

BENCHMARK(rawReused)->Name("small/raw/documents")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(oneParser)->Name("small/one_parser/documents")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(parserEach)->Name("small/parser_each/documents")->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
