#ifndef QRMCORE_INTERNAL_UNITLENGTH_H
#define QRMCORE_INTERNAL_UNITLENGTH_H

#include <cstddef>
#include <cstdint>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qrm {

#if defined(__SSE2__)
/// The number of units before the first zero unit. Reads whole aligned blocks, which may reach past the terminator but never into another page.
__attribute__((no_sanitize("address"))) inline std::size_t unitLength(const char16_t* text)
{
    constexpr std::uintptr_t kBlock = sizeof(__m128i);
    const auto address = reinterpret_cast<std::uintptr_t>(text);
    const auto skipped = static_cast<unsigned int>(address % kBlock);
    const auto* block = reinterpret_cast<const __m128i*>(reinterpret_cast<const char*>(text) - skipped);
    const __m128i zero = _mm_setzero_si128();
    const auto zerosIn = [&zero](const __m128i* units) __attribute__((no_sanitize("address")))
    {
        return static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi16(*units, zero)));
    };

    unsigned int zeros = zerosIn(block) >> skipped;
    if (zeros != 0) {
        return static_cast<unsigned int>(__builtin_ctz(zeros)) / sizeof(char16_t);
    }
    do {
        zeros = zerosIn(++block);
    } while (zeros == 0);
    const std::uintptr_t end =
        reinterpret_cast<std::uintptr_t>(block) + static_cast<unsigned int>(__builtin_ctz(zeros));
    return (end - address) / sizeof(char16_t);
}
#else
/// The number of units before the first zero unit.
inline std::size_t unitLength(const char16_t* text)
{
    return std::char_traits<char16_t>::length(text);
}
#endif

} // namespace qrm

#endif
