// Vectors of two lanes.
#if defined(__x86_64__)

#include <cstddef>
#include <immintrin.h>

#include "helpers/rgb_scaling_x86.h"

#define QMT_TARGET __attribute__((target("avx2")))
#define QMT_V(operation) _mm256_##operation
#define QMT_BITS(operation) _mm256_##operation##_si256
#define QMT_TABLE avx2Kernels
#define QMT_NAME "AVX2"

namespace QMT::scaling {

namespace {

using Vector = __m256i;

constexpr std::size_t laneCount = 2;

QMT_TARGET inline __m128i LoadLane(unsigned char const* from) {
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(from));
}

QMT_TARGET inline Vector LoadWhole(unsigned char const* from) {
    return _mm256_loadu_si256(reinterpret_cast<__m256i const*>(from));
}

QMT_TARGET inline Vector LoadLanes(unsigned char const* from, std::size_t step) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadLane(from)), LoadLane(from + step), 1);
}

QMT_TARGET inline void StoreWhole(Vector bytes, unsigned char* to) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), bytes);
}

QMT_TARGET inline void StoreLanes(Vector bytes, unsigned char* to, std::size_t step) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(bytes));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + step), _mm256_extracti128_si256(bytes, 1));
}

QMT_TARGET inline Vector Repeat(std::array<unsigned char, 16> const& lane) {
    return _mm256_broadcastsi128_si256(LoadLane(lane.data()));
}

QMT_TARGET inline Vector InTurns2(Vector bytes) {
    return _mm256_permute4x64_epi64(bytes, 0xD8);
}

QMT_TARGET inline Vector InTurns4(Vector bytes) {
    return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

QMT_TARGET inline void StoreTriple(Vector a, Vector b, Vector c, unsigned char* to) {
    StoreWhole(_mm256_permute2x128_si256(a, b, 0x20), to);
    StoreWhole(_mm256_permute2x128_si256(c, a, 0x30), to + 32);
    StoreWhole(_mm256_permute2x128_si256(b, c, 0x31), to + 64);
}

QMT_TARGET inline void StoreTwelves(Vector a, Vector b, Vector c, Vector d, unsigned char* to) {
    a = _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
    b = _mm256_permutevar8x32_epi32(b, _mm256_setr_epi32(2, 4, 5, 6, 7, 7, 0, 1));
    c = _mm256_permutevar8x32_epi32(c, _mm256_setr_epi32(5, 6, 7, 7, 0, 1, 2, 4));
    d = _mm256_permutevar8x32_epi32(d, _mm256_setr_epi32(7, 7, 0, 1, 2, 4, 5, 6));
    StoreWhole(_mm256_blend_epi32(a, b, 0xC0), to);
    StoreWhole(_mm256_blend_epi32(b, c, 0xF0), to + 32);
    StoreWhole(_mm256_blend_epi32(c, d, 0xFC), to + 64);
}

} // namespace

} // namespace QMT::scaling

#include "helpers/rgb_scaling_vectors.h"

#endif
