#include <memory>
#include <string>

#include <QRMCore/I18NString.h>
#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

namespace {

constexpr const char16_t* kTwelve = u"twelve units";

void u16string(benchmark::State& state)
{
    const char16_t* source = kTwelve;
    for (auto _ : state) {
        benchmark::DoNotOptimize(source);
        std::u16string text(source);
        benchmark::DoNotOptimize(text.data());
    }
}

void i18nString(benchmark::State& state)
{
    const char16_t* source = kTwelve;
    for (auto _ : state) {
        benchmark::DoNotOptimize(source);
        I18NString text(source);
        benchmark::DoNotOptimize(text.getExternalBuffer());
    }
}

std::u16string sixty(char16_t first)
{
    std::u16string text;
    for (char16_t i = 0; i < 60; ++i) {
        text += static_cast<char16_t>(first + i % 26);
    }
    return text;
}

void icu(benchmark::State& state, char16_t first)
{
    const std::u16string text = sixty(first);
    char bytes[256];
    for (auto _ : state) {
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(bytes, sizeof bytes, &length, text.data(), 60, &status);
        benchmark::DoNotOptimize(length);
        benchmark::DoNotOptimize(bytes[0]);
    }
}

void toBytes(benchmark::State& state, char16_t first)
{
    const I18NString text(sixty(first).c_str());
    for (auto _ : state) {
        int length = 0;
        const std::unique_ptr<char[]> bytes(text.toBytes("UTF-8", &length, QRMI18NStringAllocator, nullptr));
        benchmark::DoNotOptimize(bytes.get());
    }
}

BENCHMARK(u16string)->Name("strings/u16string/make");
BENCHMARK(i18nString)->Name("strings/I18NString/make");
BENCHMARK_CAPTURE(icu, ascii, u'a')->Name("strings/icu_ascii/utf8");
BENCHMARK_CAPTURE(toBytes, ascii, u'a')->Name("strings/toBytes_ascii/utf8");
BENCHMARK_CAPTURE(icu, cyrillic, u'\u0430')->Name("strings/icu_cyrillic/utf8");
BENCHMARK_CAPTURE(toBytes, cyrillic, u'\u0430')->Name("strings/toBytes_cyrillic/utf8");

} // namespace
