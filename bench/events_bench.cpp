#include <fstream>
#include <sstream>

#include <QRMUtils/XML/DOMInterface/QRMISAX_Parser.h>
#include <benchmark/benchmark.h>
#include <expat.h>
#include <libxml/parser.h>
#include <unicode/ucnv.h>
#include <unistd.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLString.hpp>

#include "bench/documents.h"

namespace {

using documents::Sample;

/// Callbacks that do next to nothing, so that what is measured is the way to them.
class Counting : public QRMISAX_Parser
{
public:
    void startElement(const char* name, const char** atts) override
    {
        count += *name != 0 ? 1u : 0u;
        for (; *atts != nullptr; atts += 2) {
            ++count;
        }
    }
    void endElement(const char* /*name*/) override { ++count; }
    void characterData(const char* /*s*/, int length) override { count += static_cast<unsigned>(length); }
    void comment(const char* /*data*/) override { ++count; }
    void processingInstruction(const char* /*target*/, const char* /*data*/) override { ++count; }
    void startNamespaceDecl(const char* /*prefix*/, const char* /*uri*/) override { ++count; }
    void endNamespaceDecl(const char* /*prefix*/) override { ++count; }

    std::size_t count = 0;
};

template <class Parse>
void countEvents(benchmark::State& state, Parse&& parse)
{
    Counting parser;
    for (auto _ : state) {
        if (parse(parser) != 1) {
            state.SkipWithError("not parsed");
            return;
        }
    }
    benchmark::DoNotOptimize(parser.count);
}

void bufferEvents(benchmark::State& state, const Sample& sample)
{
    countEvents(state, [&](Counting& parser) {
        return parser.parse(sample.text.data(), static_cast<int>(sample.text.size()));
    });
}

void streamEvents(benchmark::State& state, const Sample& sample)
{
    countEvents(state, [&](Counting& parser) {
        std::istringstream stream(sample.text);
        return parser.parse(stream);
    });
}

void fileEvents(benchmark::State& state, const Sample& sample)
{
    const std::string name =
        (std::filesystem::temp_directory_path() / ("qrm-events-" + std::to_string(::getpid()))).string();
    std::ofstream(name, std::ios::binary) << sample.text;
    countEvents(state, [&](Counting& parser) { return parser.parse(name.c_str()); });
    std::filesystem::remove(name);
}

void rawEvents(benchmark::State& state, const Sample& sample, xercesc::DefaultHandler& handler)
{
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
    reader->setContentHandler(&handler);
    reader->setLexicalHandler(&handler);
    reader->setErrorHandler(&handler);
    for (auto _ : state) {
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(sample.text.data()),
                                                sample.text.size(), "");
        reader->parse(source);
    }
}

void emptyHandler(benchmark::State& state, const Sample& sample)
{
    xercesc::DefaultHandler handler;
    rawEvents(state, sample, handler);
}

/// Every string of an event as UTF-8, by the converter of the derived class.
template <class Convert>
class Converting : public xercesc::DefaultHandler
{
public:
    void startElement(const XMLCh* uri, const XMLCh* local, const XMLCh* /*qname*/,
                      const xercesc::Attributes& attributes) override
    {
        convert(uri);
        convert(local);
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            convert(attributes.getURI(i));
            convert(attributes.getQName(i));
            convert(attributes.getValue(i));
        }
    }
    void endElement(const XMLCh* uri, const XMLCh* local, const XMLCh* /*qname*/) override
    {
        convert(uri);
        convert(local);
    }
    void characters(const XMLCh* text, XMLSize_t /*length*/) override { convert(text); }
    void comment(const XMLCh* text, XMLSize_t /*length*/) override { convert(text); }
    void processingInstruction(const XMLCh* target, const XMLCh* data) override
    {
        convert(target);
        convert(data);
    }
    void startPrefixMapping(const XMLCh* prefix, const XMLCh* uri) override
    {
        convert(prefix);
        convert(uri);
    }
    void endPrefixMapping(const XMLCh* prefix) override { convert(prefix); }

private:
    Convert convert;
};

struct IcuConverterEach
{
    void operator()(const XMLCh* text) const
    {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* const converter = ucnv_open("UTF-8", &status);
        const auto length = static_cast<int32_t>(xercesc::XMLString::stringLen(text));
        const std::unique_ptr<char[]> bytes(new char[3 * static_cast<std::size_t>(length) + 1]);
        ucnv_fromUChars(converter, bytes.get(), 3 * length + 1, text, length, &status);
        ucnv_close(converter);
        benchmark::DoNotOptimize(bytes.get());
    }
};

struct XercesTranscoder
{
    void operator()(const XMLCh* text) const
    {
        const xercesc::TranscodeToStr bytes(text, "UTF-8");
        benchmark::DoNotOptimize(bytes.str());
    }
};

template <class Convert>
void convertingHandler(benchmark::State& state, const Sample& sample)
{
    Converting<Convert> handler;
    rawEvents(state, sample, handler);
}

void expatEvents(benchmark::State& state, const Sample& sample)
{
    std::size_t count = 0;
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreateNS(nullptr, '\1');
        XML_SetUserData(parser, &count);
        XML_SetElementHandler(
            parser, [](void* data, const XML_Char*, const XML_Char**) { ++*static_cast<std::size_t*>(data); },
            [](void* data, const XML_Char*) { ++*static_cast<std::size_t*>(data); });
        XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char*, int length) {
            *static_cast<std::size_t*>(data) += static_cast<unsigned>(length);
        });
        if (XML_Parse(parser, sample.text.data(), static_cast<int>(sample.text.size()), 1) != XML_STATUS_OK) {
            state.SkipWithError("not parsed");
        }
        XML_ParserFree(parser);
    }
    benchmark::DoNotOptimize(count);
}

void libxmlEvents(benchmark::State& state, const Sample& sample)
{
    xmlSAXHandler handler = {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* data, const xmlChar*, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int, int,
                                const xmlChar**) { ++*static_cast<std::size_t*>(data); };
    handler.endElementNs = [](void* data, const xmlChar*, const xmlChar*, const xmlChar*) {
        ++*static_cast<std::size_t*>(data);
    };
    handler.characters = [](void* data, const xmlChar*, int length) {
        *static_cast<std::size_t*>(data) += static_cast<unsigned>(length);
    };
    std::size_t count = 0;
    for (auto _ : state) {
        if (xmlSAXUserParseMemory(&handler, &count, sample.text.data(), static_cast<int>(sample.text.size()))
            != 0) {
            state.SkipWithError("not parsed");
        }
    }
    benchmark::DoNotOptimize(count);
}

const bool registered = [] {
    for (const Sample& sample : documents::all()) {
        const auto add = [&sample](const char* side, void (*run)(benchmark::State&, const Sample&)) {
            benchmark::RegisterBenchmark(("events/" + std::string(side) + "/" + sample.name).c_str(), run,
                                         std::cref(sample))
                ->Unit(benchmark::kMillisecond);
        };
        add("raw", emptyHandler);
        add("raw_icu_each", convertingHandler<IcuConverterEach>);
        add("raw_transcoder", convertingHandler<XercesTranscoder>);
        add("buffer", bufferEvents);
        add("stream", streamEvents);
        add("file", fileEvents);
        add("expat", expatEvents);
        add("libxml2", libxmlEvents);
    }
    return true;
}();

} // namespace
