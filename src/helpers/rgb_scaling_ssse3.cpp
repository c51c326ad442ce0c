// Vectors of one lane.
#if defined(__x86_64__)

#include <cstddef>
#include <immintrin.h>

#include "helpers/rgb_scaling_x86.h"

#define QMT_TARGET __attribute__((target("ssse3")))
#define QMT_V(operation) _mm_##operation
#define QMT_BITS(operation) _mm_##operation##_si128
#define QMT_TABLE ssse3Kernels
#define QMT_NAME "SSSE3"

namespace QMT::scaling {

namespace {

using Vector = __m128i;

constexpr std::size_t laneCount = 1;

QMT_TARGET inline Vector LoadWhole(unsigned char const* from) {
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(from));
}

QMT_TARGET inline Vector LoadLanes(unsigned char const* from, std::size_t) {
    return LoadWhole(from);
}

QMT_TARGET inline void StoreWhole(Vector bytes, unsigned char* to) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

QMT_TARGET inline void StoreLanes(Vector bytes, unsigned char* to, std::size_t) {
    StoreWhole(bytes, to);
}

QMT_TARGET inline Vector Repeat(std::array<unsigned char, 16> const& lane) {
    return LoadWhole(lane.data());
}

QMT_TARGET inline Vector InTurns2(Vector bytes) {
    return bytes;
}

QMT_TARGET inline Vector InTurns4(Vector bytes) {
    return bytes;
}

QMT_TARGET inline void StoreTriple(Vector a, Vector b, Vector c, unsigned char* to) {
    StoreWhole(a, to);
    StoreWhole(b, to + 16);
    StoreWhole(c, to + 32);
}

QMT_TARGET inline void StoreTwelves(Vector a, Vector b, Vector c, Vector d, unsigned char* to) {
    StoreWhole(_mm_or_si128(a, _mm_slli_si128(b, 12)), to);
    StoreWhole(_mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)), to + 16);
    StoreWhole(_mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)), to + 32);
}

} // namespace

} // namespace QMT::scaling

#include "helpers/rgb_scaling_vectors.h"

#endif
