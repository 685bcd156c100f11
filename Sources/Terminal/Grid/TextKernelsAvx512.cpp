#include "Terminal/Grid/TextKernelsAvx512.h"

#include "Terminal/Text/Utf8.h"

#include <algorithm>
#include <array>
#include <bit>

#if defined(__x86_64__)

#include <immintrin.h>

namespace corvane::terminal {

namespace {

constexpr size_t lanes = 16;

template <typename Value> constexpr std::array<uint8_t, 64> bytesOf(Value value)
{
    std::array<uint8_t, 64> bytes {};
    for (int i = 0; i < 64; ++i)
        bytes[size_t(i)] = uint8_t(value(i));
    return bytes;
}

alignas(64) constexpr auto places = bytesOf([](int i) { return i; });
alignas(64) constexpr auto lanesOfBytes = bytesOf([](int i) { return i / 4; });
alignas(64) constexpr auto placesInLane = bytesOf([](int i) { return i % 4; });
alignas(64) constexpr auto placesFromEnd = bytesOf([](int i) { return 3 - i % 4; });
alignas(64) constexpr auto swapped = bytesOf([](int i) { return i % 16 / 4 * 4 + 3 - i % 4; }); // within each quarter

#pragma clang attribute push(                                                                                          \
    __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,popcnt"))), apply_to = function)

inline __m512i load(const void* from)
{
    return _mm512_loadu_si512(from);
}

inline __m512i all(uint32_t value)
{
    return _mm512_set1_epi32(int(value));
}

inline uint32_t lowBits(size_t count)
{
    return _bzhi_u32(~0u, unsigned(count));
}

/// Looks up each lane's length in the table.
inline __m512i look(const uint32_t (&table)[16], __m512i lengths)
{
    return _mm512_permutexvar_epi32(lengths, load(table));
}

size_t decode(const uint8_t* text, uint64_t starts, char32_t* points, size_t& count)
{
    const __m512i block = load(text);
    uint8_t begins[64 + lanes + 1] = {};
    _mm512_storeu_si512(begins, _mm512_maskz_compress_epi8(starts, load(places.data())));
    const size_t characters = size_t(std::popcount(starts)) - 1;
    for (size_t i = 0; i < characters; i += lanes) {
        const __m128i begin = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begins + i));
        const __m128i end = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begins + i + 1));
        const __m512i lengths = _mm512_cvtepu8_epi32(_mm_sub_epi8(end, begin));
        const __m512i begun = _mm512_shuffle_epi8(_mm512_broadcast_i32x4(begin), load(lanesOfBytes.data()));
        const __m512i bytes
            = _mm512_srlv_epi32(_mm512_permutexvar_epi8(_mm512_add_epi8(begun, load(placesFromEnd.data())), block),
                _mm512_sub_epi32(all(32), _mm512_slli_epi32(lengths, 3)));
        const __m512i spread = _mm512_or_si512(_mm512_or_si512(_mm512_and_si512(bytes, all(0x7f)),
                                                   _mm512_and_si512(_mm512_srli_epi32(bytes, 2), all(0xfc0))),
            _mm512_or_si512(_mm512_and_si512(_mm512_srli_epi32(bytes, 4), all(0x3f000)),
                _mm512_and_si512(_mm512_srli_epi32(bytes, 6), all(0x1c0000))));
        const __m512i decoded = _mm512_and_si512(spread, look(utf8Forms.valueMask, lengths));
        const __mmask16 isLead = _mm512_cmpeq_epi32_mask(
            _mm512_and_si512(bytes, look(utf8Forms.leadMask, lengths)), look(utf8Forms.lead, lengths));
        const __mmask16 isInRange = _mm512_cmple_epu32_mask(
            _mm512_sub_epi32(decoded, look(utf8Forms.first, lengths)), look(utf8Forms.span, lengths));
        const __mmask16 isSurrogate = _mm512_cmplt_epu32_mask(_mm512_sub_epi32(decoded, all(0xd800)), all(0x800));
        const __mmask16 isShort = _mm512_cmple_epu32_mask(lengths, all(4));
        const auto good = uint32_t(isLead & isInRange & isShort & ~isSurrogate);
        _mm512_storeu_si512(points + count, decoded);
        const size_t here = std::min(lanes, characters - i);
        const size_t valid = std::min(here, size_t(std::countr_one(good)));
        count += valid;
        if (valid < here)
            return begins[i + valid];
    }
    return begins[characters];
}

inline void storeCells(Cell* cells, __m512i low, __m512i style, uint32_t present)
{
    const __m512i first = _mm512_cvtepu32_epi64(_mm512_castsi512_si256(low));
    const __m512i second = _mm512_cvtepu32_epi64(_mm512_extracti64x4_epi64(low, 1));
    _mm512_mask_storeu_epi64(cells, __mmask8(present), _mm512_or_si512(first, style));
    _mm512_mask_storeu_epi64(cells + 8, __mmask8(present >> 8), _mm512_or_si512(second, style));
}

void place(Cell* cells, const char32_t* points, size_t count, uint64_t wide, StyleId style)
{
    const __m512i high = _mm512_set1_epi64(int64_t(uint64_t(style) << 32));
    const __m512i tail = all(uint32_t(Cell::character(0, 0, Cell::Part::WideTail).bits()));
    const __m512i head = all(uint32_t(Cell::character(0, 0, Cell::Part::WideHead).bits()));
    while (count > 0) {
        const size_t here = std::min(lanes, count);
        const auto isThere = __mmask16(lowBits(here));
        const auto isWide = __mmask16(wide & isThere);
        __m512i characters = _mm512_maskz_loadu_epi32(isThere, points);
        characters = _mm512_mask_or_epi32(characters, isWide, characters, head);
        const auto total = here + size_t(std::popcount(isWide));
        // Two bits per character, the second only if it is wide, packed together.
        const uint32_t heads = _pext_u32(0x55555555, 0x55555555 | _pdep_u32(isWide, 0xaaaaaaaa));
        const auto present = lowBits(total);
        storeCells(cells, _mm512_mask_expand_epi32(tail, __mmask16(heads), characters), high, present & 0xffff);
        if (total > lanes) {
            const int placed = std::popcount(heads & 0xffff);
            const __m512i rest = _mm512_maskz_compress_epi32(__mmask16(0xffffu << placed), characters);
            storeCells(
                cells + lanes, _mm512_mask_expand_epi32(tail, __mmask16(heads >> lanes), rest), high, present >> lanes);
        }
        cells += total;
        points += here;
        count -= here;
        wide >>= here;
    }
}

PackedText pack(const Cell* cells, size_t count, char* to)
{
    constexpr auto bitsOf = [](Cell cell) {
        return uint32_t(cell.bits());
    };
    constexpr uint32_t tail = bitsOf(Cell::character(0, 0, Cell::Part::WideTail));
    constexpr uint32_t head = bitsOf(Cell::character(0, 0, Cell::Part::WideHead));
    constexpr uint32_t cluster = bitsOf(Cell::cluster(0, 0, Cell::Part::Narrow));
    const __m512i one = _mm512_set1_epi8(1);
    PackedText packed;
    while (packed.cells < count) {
        const uint32_t isThere = lowBits(std::min(lanes, count - packed.cells));
        const Cell* const from = cells + packed.cells;
        const __m256i first = _mm512_cvtepi64_epi32(_mm512_maskz_loadu_epi64(__mmask8(isThere), from));
        const __m256i second = _mm512_cvtepi64_epi32(_mm512_maskz_loadu_epi64(__mmask8(isThere >> 8), from + 8));
        const __m512i contents = _mm512_inserti64x4(_mm512_castsi256_si512(first), second, 1);
        const uint32_t clusters = _mm512_test_epi32_mask(contents, all(cluster));
        const uint32_t taken = isThere & (clusters ? (clusters & -clusters) - 1 : ~0u);
        const __m512i parts = _mm512_and_si512(contents, all(tail | head));
        const uint32_t counted = taken & ~uint32_t(_mm512_cmpeq_epi32_mask(parts, all(tail)));
        const uint32_t wide = _pext_u32(_mm512_cmpeq_epi32_mask(parts, all(head)), counted);
        const size_t characters = size_t(std::popcount(counted));
        const __m512i points
            = _mm512_and_si512(_mm512_maskz_compress_epi32(__mmask16(counted), contents), all(cluster - 1));

        const __mmask16 two = _mm512_cmpge_epu32_mask(points, all(0x80));
        const __mmask16 three = _mm512_cmpge_epu32_mask(points, all(0x800));
        const __mmask16 four = _mm512_cmpge_epu32_mask(points, all(0x10000));
        __m512i marks = _mm512_maskz_mov_epi32(two, all(utf8Marks[2]));
        marks = _mm512_mask_mov_epi32(marks, three, all(utf8Marks[3]));
        marks = _mm512_mask_mov_epi32(marks, four, all(utf8Marks[4]));
        __m512i lengths = _mm512_mask_add_epi32(one, two, one, all(0x01010101));
        lengths = _mm512_mask_add_epi32(lengths, three, lengths, all(0x01010101));
        lengths = _mm512_mask_add_epi32(lengths, four, lengths, all(0x01010101));
        const __m512i spread = _mm512_or_si512(_mm512_or_si512(_mm512_and_si512(points, all(0x3f)),
                                                   _mm512_slli_epi32(_mm512_and_si512(points, all(0xfc0)), 2)),
            _mm512_or_si512(_mm512_slli_epi32(_mm512_and_si512(points, all(0x3f000)), 4),
                _mm512_slli_epi32(_mm512_and_si512(points, all(0x1c0000)), 6)));
        const __m512i bytes = _mm512_mask_or_epi32(points, two, spread, marks);
        const __m512i shifts = _mm512_sub_epi32(all(32), _mm512_and_si512(_mm512_slli_epi32(lengths, 3), all(0xff)));
        const __m512i encoded = _mm512_shuffle_epi8(_mm512_sllv_epi32(bytes, shifts), load(swapped.data()));
        const uint64_t present = _mm512_cmpgt_epu8_mask(lengths, load(placesInLane.data()))
            & _bzhi_u64(~uint64_t(0), unsigned(4 * characters));
        _mm512_storeu_si512(to + packed.bytes, _mm512_maskz_compress_epi8(present, encoded));

        packed.wide |= uint64_t(wide) << packed.characters;
        packed.two |= uint64_t(two) << packed.characters;
        packed.three |= uint64_t(three) << packed.characters;
        packed.four |= uint64_t(four) << packed.characters;
        packed.bytes += size_t(std::popcount(present));
        packed.characters += characters;
        packed.cells += size_t(std::popcount(taken));
        if (clusters)
            break;
    }
    return packed;
}

size_t shapes(const PackedText& text, ShapeRun* runs)
{
    const auto changes = [](uint64_t bits) {
        return bits ^ bits << 1;
    };
    const uint64_t begins
        = _bzhi_u64(changes(text.wide) | changes(text.two) | changes(text.three) | changes(text.four) | 1,
            unsigned(text.characters));
    const uint64_t ends = begins >> 1 | uint64_t(1) << (text.characters - 1);
    const __m512i first = _mm512_maskz_compress_epi8(begins, load(places.data()));
    const __m512i last = _mm512_maskz_compress_epi8(ends, load(places.data()));
    uint8_t lengths[64];
    _mm512_storeu_si512(lengths, _mm512_add_epi8(_mm512_sub_epi8(last, first), _mm512_set1_epi8(1)));
    const auto count = size_t(std::popcount(begins));
    const auto ofRuns = [begins](uint64_t bits) {
        return _pext_u64(bits, begins);
    };
    const uint64_t wide = ofRuns(text.wide);
    const uint64_t two = ofRuns(text.two);
    const uint64_t three = ofRuns(text.three);
    const uint64_t four = ofRuns(text.four);
    static_assert(sizeof(ShapeRun) == 4 && std::endian::native == std::endian::little);
    const __m512i oneByte = all(0x100);
    for (size_t i = 0; i < count; i += lanes) {
        const __m128i length = _mm_loadu_si128(reinterpret_cast<const __m128i*>(lengths + i));
        __m512i run = _mm512_or_si512(_mm512_slli_epi32(_mm512_cvtepu8_epi32(length), 16), all(0x101));
        run = _mm512_mask_add_epi32(run, __mmask16(wide >> i), run, all(1));
        run = _mm512_mask_add_epi32(run, __mmask16(two >> i), run, oneByte);
        run = _mm512_mask_add_epi32(run, __mmask16(three >> i), run, oneByte);
        run = _mm512_mask_add_epi32(run, __mmask16(four >> i), run, oneByte);
        _mm512_storeu_si512(runs + i, run);
    }
    return count;
}

#pragma clang attribute pop

}

bool hasTextAvx512()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")
        && __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2")
        && __builtin_cpu_supports("bmi2");
}

TextKernels textKernelsAvx512()
{
    return { .decode = decode, .place = place, .pack = pack, .shapes = shapes };
}

}

#else

namespace corvane::terminal {

bool hasTextAvx512()
{
    return false;
}

TextKernels textKernelsAvx512()
{
    return {};
}

}

#endif
