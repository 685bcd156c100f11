#include "Terminal/Grid/Kernels.h"

#include <bit>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace corvane::terminal {

namespace {

inline bool isPrintable(uint8_t byte)
{
    return uint8_t(byte - 0x20) < 0x5f;
}

[[gnu::always_inline]] inline size_t printableTail(const uint8_t* text, size_t from, size_t size)
{
    while (from < size && isPrintable(text[from]))
        ++from;
    return from;
}

[[gnu::always_inline]] inline void widenLoop(uint64_t* cells, const uint8_t* text, size_t count, uint64_t high)
{
    for (size_t i = 0; i < count; ++i)
        cells[i] = high | text[i];
}

[[gnu::always_inline]] inline void narrowLoop(uint8_t* text, const uint64_t* cells, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        text[i] = uint8_t(cells[i]);
}

#if defined(__x86_64__)

// A byte is printable when, as a signed number, it is above 0x1f and not 0x7f.
size_t printableSse2(const uint8_t* text, size_t size)
{
    size_t at = 0;
    for (; at + 16 <= size; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at));
        const __m128i good
            = _mm_andnot_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7f)), _mm_cmpgt_epi8(bytes, _mm_set1_epi8(0x1f)));
        const auto bad = uint16_t(~_mm_movemask_epi8(good));
        if (bad)
            return at + size_t(std::countr_zero(bad));
    }
    return printableTail(text, at, size);
}

[[gnu::target("avx2,bmi,bmi2")]] size_t printableAvx2(const uint8_t* text, size_t size)
{
    size_t at = 0;
    for (; at + 32 <= size; at += 32) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + at));
        const __m256i good = _mm256_andnot_si256(
            _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(0x7f)), _mm256_cmpgt_epi8(bytes, _mm256_set1_epi8(0x1f)));
        const auto bad = ~uint32_t(_mm256_movemask_epi8(good));
        if (bad)
            return at + size_t(std::countr_zero(bad));
    }
    return printableTail(text, at, size);
}

[[gnu::target("avx2")]] void widenAvx2(uint64_t* cells, const uint8_t* text, size_t count, uint64_t high)
{
    widenLoop(cells, text, count, high);
}

[[gnu::target("avx2")]] void narrowAvx2(uint8_t* text, const uint64_t* cells, size_t count)
{
    narrowLoop(text, cells, count);
}

[[gnu::target("avx512f,avx512vl,avx512bw")]] void narrowAvx512(uint8_t* text, const uint64_t* cells, size_t count)
{
    size_t at = 0;
    for (; at + 8 <= count; at += 8)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(text + at), _mm512_cvtepi64_epi8(_mm512_loadu_si512(cells + at)));
    narrowLoop(text + at, cells + at, count - at);
}

Kernels choose()
{
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw");
    return {
        .printable = avx2 ? printableAvx2 : printableSse2,
        .widen = avx2 ? widenAvx2 : widenLoop,
        .narrow = avx512 ? narrowAvx512
            : avx2       ? narrowAvx2
                         : narrowLoop,
    };
}

#else

size_t printableLoop(const uint8_t* text, size_t size)
{
    return printableTail(text, 0, size);
}

Kernels choose()
{
    return { .printable = printableLoop, .widen = widenLoop, .narrow = narrowLoop };
}

#endif

}

const Kernels& Kernels::instance()
{
    static const Kernels kernels = choose();
    return kernels;
}

}
