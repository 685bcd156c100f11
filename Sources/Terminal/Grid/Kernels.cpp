#include "Terminal/Grid/Kernels.h"

#include <algorithm>
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

[[gnu::always_inline]] inline uint64_t lastOfStyleTail(const uint64_t* cells, size_t from, size_t count)
{
    uint64_t ends = 0;
    for (size_t i = from; i + 1 < count; ++i)
        ends |= uint64_t((cells[i] ^ cells[i + 1]) >> 32 != 0) << i;
    return ends;
}

uint64_t lastOfStyleLoop(const uint64_t* cells, size_t count)
{
    return lastOfStyleTail(cells, 0, count);
}

#if defined(__x86_64__)

// As a signed number, a printable byte is above 0x1f and not 0x7f.
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

[[gnu::target("avx512f,avx512bw,bmi2")]] size_t printableAvx512(const uint8_t* text, size_t size)
{
    for (size_t at = 0; at < size; at += 64) {
        const uint64_t present = _bzhi_u64(~uint64_t(0), unsigned(std::min<size_t>(size - at, 64)));
        const __m512i bytes = _mm512_maskz_loadu_epi8(present, text + at);
        const __m512i fromSpace = _mm512_sub_epi8(bytes, _mm512_set1_epi8(0x20));
        if (const uint64_t bad = _mm512_cmpge_epu8_mask(fromSpace, _mm512_set1_epi8(0x5f)) & present)
            return at + size_t(std::countr_zero(bad));
    }
    return size;
}

// As signed numbers, continuation bytes are below -64 and all non-ASCII bytes below 0.
ByteKinds kindsSse2(const uint8_t* text)
{
    uint64_t inside = 0;
    uint64_t high = 0;
    uint64_t controls = 0;
    for (int at = 0; at < 64; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at));
        const __m128i isControl
            = _mm_or_si128(_mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20)), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7f)));
        inside |= uint64_t(_mm_movemask_epi8(_mm_cmplt_epi8(bytes, _mm_set1_epi8(-64)))) << at;
        high |= uint64_t(_mm_movemask_epi8(bytes)) << at;
        controls |= uint64_t(_mm_movemask_epi8(isControl)) << at;
    }
    return { ~inside, ~high, controls & ~high };
}

[[gnu::target("avx2")]] ByteKinds kindsAvx2(const uint8_t* text)
{
    uint64_t inside = 0;
    uint64_t high = 0;
    uint64_t controls = 0;
    for (int at = 0; at < 64; at += 32) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + at));
        const __m256i isControl = _mm256_or_si256(
            _mm256_cmpgt_epi8(_mm256_set1_epi8(0x20), bytes), _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(0x7f)));
        inside |= uint64_t(uint32_t(_mm256_movemask_epi8(_mm256_cmpgt_epi8(_mm256_set1_epi8(-64), bytes)))) << at;
        high |= uint64_t(uint32_t(_mm256_movemask_epi8(bytes))) << at;
        controls |= uint64_t(uint32_t(_mm256_movemask_epi8(isControl))) << at;
    }
    return { ~inside, ~high, controls & ~high };
}

[[gnu::target("avx2")]] uint64_t lastOfStyleAvx2(const uint64_t* cells, size_t count)
{
    uint64_t ends = 0;
    size_t at = 0;
    for (; at + 5 <= count; at += 4) {
        const __m256i here = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cells + at));
        const __m256i next = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cells + at + 1));
        const __m256i differs = _mm256_srli_epi64(_mm256_xor_si256(here, next), 32);
        const __m256i same = _mm256_cmpeq_epi64(differs, _mm256_setzero_si256());
        ends |= uint64_t(~_mm256_movemask_pd(_mm256_castsi256_pd(same)) & 15) << at;
    }
    return ends | lastOfStyleTail(cells, at, count);
}

[[gnu::target("avx2")]] void widenAvx2(uint64_t* cells, const uint8_t* text, size_t count, uint64_t high)
{
    widenLoop(cells, text, count, high);
}

[[gnu::target("avx2")]] void narrowAvx2(uint8_t* text, const uint64_t* cells, size_t count)
{
    narrowLoop(text, cells, count);
}

/// The first 8 of what is left, as a mask.
[[gnu::target("bmi2")]] inline uint8_t firstEight(size_t left)
{
    return uint8_t(_bzhi_u32(0xff, unsigned(std::min<size_t>(left, 8))));
}

// The masks spare the tail its loop, whose length no branch predictor knows.
[[gnu::target("avx512f,avx512vl,avx512bw,bmi2")]] void widenAvx512(
    uint64_t* cells, const uint8_t* text, size_t count, uint64_t high)
{
    const __m512i wideHigh = _mm512_set1_epi64(int64_t(high));
    for (size_t at = 0; at < count; at += 8) {
        const uint8_t mask = firstEight(count - at);
        const __m512i wide = _mm512_cvtepu8_epi64(_mm_maskz_loadu_epi8(mask, text + at));
        _mm512_mask_storeu_epi64(cells + at, mask, _mm512_or_si512(wide, wideHigh));
    }
}

[[gnu::target("avx512f,avx512vl,avx512bw,bmi2")]] void narrowAvx512(uint8_t* text, const uint64_t* cells, size_t count)
{
    for (size_t at = 0; at < count; at += 8) {
        const uint8_t mask = firstEight(count - at);
        _mm_mask_storeu_epi8(text + at, mask, _mm512_cvtepi64_epi8(_mm512_maskz_loadu_epi64(mask, cells + at)));
    }
}

Kernels choose()
{
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw");
    return {
        .printable = avx512 ? printableAvx512
            : avx2          ? printableAvx2
                            : printableSse2,
        .kinds = avx2 ? kindsAvx2 : kindsSse2,
        .widen = avx512 ? widenAvx512
            : avx2      ? widenAvx2
                        : widenLoop,
        .narrow = avx512 ? narrowAvx512
            : avx2       ? narrowAvx2
                         : narrowLoop,
        .lastOfStyle = avx2 ? lastOfStyleAvx2 : lastOfStyleLoop,
    };
}

#else

size_t printableLoop(const uint8_t* text, size_t size)
{
    return printableTail(text, 0, size);
}

ByteKinds kindsLoop(const uint8_t* text)
{
    ByteKinds kinds;
    for (int at = 0; at < 64; ++at) {
        kinds.starts |= uint64_t((text[at] & 0xc0) != 0x80) << at;
        kinds.ascii |= uint64_t(text[at] < 0x80) << at;
        kinds.controls |= uint64_t(text[at] < 0x80 && !isPrintable(text[at])) << at;
    }
    return kinds;
}

Kernels choose()
{
    return { .printable = printableLoop,
        .kinds = kindsLoop,
        .widen = widenLoop,
        .narrow = narrowLoop,
        .lastOfStyle = lastOfStyleLoop };
}

#endif

}

const Kernels& Kernels::instance()
{
    static const Kernels kernels = choose();
    return kernels;
}

}
