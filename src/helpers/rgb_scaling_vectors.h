// The inner loops in vectors, written once for all widths. A source that includes this defines, in front of
// it, QMT_TARGET (the attribute that permits its instructions), QMT_V(operation) and QMT_BITS(operation) (the
// name of an intrinsic for the vector, with an element type or for the whole), QMT_TABLE and QMT_NAME (the
// table of these loops), and in an unnamed namespace of QMT::scaling the type Vector and
//
//     laneCount                  16-byte lanes of a vector
//     LoadLanes(from, step)      lane i from from + i * step
//     StoreLanes(v, to, step)    the same backwards
//     LoadWhole, StoreWhole      a vector that is contiguous in memory
//     Repeat(lane)               the same 16 bytes in each lane
//     InTurns2(v), InTurns4(v)   puts 8 or 4 bytes of each lane by turns, from what was first in each lane on
//     StoreTriple(a, b, c, to)   a, b and c of the first lane, then those of the second
//     StoreTwelves(a, .. d, to)  12 bytes of each lane of a, of b and so on; the others must be zero
//
// Memory need not be aligned.
#pragma once

#include <algorithm>
#include <array>

#include "helpers/rgb_scaling_division.h"
#include "helpers/rgb_scaling_portable.h"
#include "helpers/rgb_scaling_x86.h"

// Without it some compilers call these within the loops, with their vectors in memory.
#define QMT_INLINE QMT_TARGET __attribute__((always_inline)) inline

// NOLINTBEGIN(misc-definitions-in-headers): each source that includes this gets loops of its own

namespace QMT::scaling {

namespace {

using Lane = std::array<unsigned char, 16>;

constexpr unsigned char none = 0x80; // in a shuffle: a zero

// ---- averages of pixels

// Of 4 pixels, or of fewer with zeros instead, the channels in pairs: B0 B1 G0 G1 R0 R1 and two zeros, then
// those of the other two pixels. Added in pairs they are two packed pixels of 16 bits a channel.
constexpr Lane PairsLane(std::size_t pixelStep, std::size_t pixels) {
    Lane lane{};
    lane.fill(none);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        for (std::size_t channel = 0; channel < 3; ++channel)
            lane[8 * (pixel / 2) + 2 * channel + pixel % 2] =
                static_cast<unsigned char>(pixel * pixelStep + channel);
    return lane;
}

// For pixels of 3 and of 4 bytes, of which 1 to 4 count.
constexpr Lane pairsLanes[2][4] = {{PairsLane(3, 1), PairsLane(3, 2), PairsLane(3, 3), PairsLane(3, 4)},
                                   {PairsLane(4, 1), PairsLane(4, 2), PairsLane(4, 3), PairsLane(4, 4)}};

QMT_INLINE Vector RepeatPairs(std::size_t pixelStep, std::size_t pixels) {
    return Repeat(pairsLanes[pixelStep - 3][pixels - 1]);
}

constexpr Lane ExpandLane(std::size_t pixelStep) {
    Lane lane{};
    for (std::size_t i = 0; i < lane.size(); ++i)
        lane[i] = i % 4 == 3 ? none : static_cast<unsigned char>(i / 4 * pixelStep + i % 4);
    return lane;
}

template <std::size_t pixelStep>
constexpr Lane expandLane = ExpandLane(pixelStep);

// 4 pixels in each lane, which lie one behind the other in memory; reads 16 bytes from the last lane's start
// on.
template <std::size_t pixelStep>
QMT_INLINE Vector LoadPixels(unsigned char const* from) {
    return pixelStep == 4 ? LoadWhole(from) : LoadLanes(from, 4 * pixelStep);
}

constexpr std::size_t loadedPixels = 4 * laneCount;

// What Average classes give at a time.
constexpr std::size_t stepOutputs = 4 * laneCount;

// How many outputs the vectors reach that end within the source, where the last lane of the last one begins
// `back` outputs before the end and reads `reach` bytes; no more than averages have room for. Mostly that is
// all of them, and there is no need to divide.
std::size_t ReadableOutputs(BlockRow const& block, std::size_t back, std::size_t reach) {
    std::size_t const enough = block.count + averagesOverrun / 4;
    if (block.readableInLowest >= reach + enough * block.BlockStep())
        return enough;
    return block.readableInLowest < reach ? 0 : (block.readableInLowest - reach) / block.BlockStep() + back;
}

// Each of these classes averages stepOutputs blocks beside each other, the first of which begins at `from`,
// into packed pixels.

template <std::size_t pixelStep>
class AverageOfOnes {
public:
    QMT_INLINE explicit AverageOfOnes(BlockRow const&) : expand(Repeat(expandLane<pixelStep>)) {}

    static std::size_t Readable(BlockRow const& block) { return ReadableOutputs(block, 4, 16); }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        return QMT_V(shuffle_epi8)(LoadPixels<pixelStep>(from), expand);
    }

private:
    Vector expand;
};

template <std::size_t pixelStep>
class AverageOfTwos {
public:
    QMT_INLINE explicit AverageOfTwos(BlockRow const& block)
        : rowStep(block.rowStep), pairs(RepeatPairs(pixelStep, 4)), ones(QMT_V(set1_epi8)(1)) {}

    static std::size_t Readable(BlockRow const& block) { return ReadableOutputs(block, 2, 16); }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        return InTurns2(QMT_V(packus_epi16)(Two(from), Two(from + loadedPixels * pixelStep)));
    }

private:
    QMT_INLINE Vector PairSums(unsigned char const* from) const {
        return QMT_V(maddubs_epi16)(QMT_V(shuffle_epi8)(LoadPixels<pixelStep>(from), pairs), ones);
    }

    QMT_INLINE Vector Two(unsigned char const* from) const {
        return QMT_V(srli_epi16)(QMT_V(add_epi16)(PairSums(from), PairSums(from + rowStep)), 2);
    }

    std::size_t rowStep;
    Vector pairs;
    Vector ones;
};

template <std::size_t pixelStep>
class AverageOfFours {
public:
    QMT_INLINE explicit AverageOfFours(BlockRow const& block)
        : rowStep(block.rowStep), pairs(RepeatPairs(pixelStep, 4)), ones(QMT_V(set1_epi8)(1)) {}

    static std::size_t Readable(BlockRow const& block) { return ReadableOutputs(block, 1, 16); }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        constexpr std::size_t step = loadedPixels * pixelStep;
        return InTurns4(QMT_V(packus_epi16)(Two(from, from + step), Two(from + 2 * step, from + 3 * step)));
    }

private:
    QMT_INLINE Vector PairSums(unsigned char const* from) const {
        return QMT_V(maddubs_epi16)(QMT_V(shuffle_epi8)(LoadPixels<pixelStep>(from), pairs), ones);
    }

    QMT_INLINE Vector Sums(unsigned char const* from) const {
        Vector const upper = QMT_V(add_epi16)(PairSums(from), PairSums(from + rowStep));
        from += 2 * rowStep;
        return QMT_V(add_epi16)(upper, QMT_V(add_epi16)(PairSums(from), PairSums(from + rowStep)));
    }

    // The halves of a lane of sums are two parts of one output.
    QMT_INLINE Vector Two(unsigned char const* first, unsigned char const* second) const {
        Vector const a = Sums(first);
        Vector const b = Sums(second);
        Vector const sums = QMT_V(add_epi16)(QMT_V(unpacklo_epi64)(a, b), QMT_V(unpackhi_epi64)(a, b));
        return QMT_V(srli_epi16)(sums, 4);
    }

    std::size_t rowStep;
    Vector pairs;
    Vector ones;
};

class Divider {
public:
    QMT_INLINE explicit Divider(unsigned int factor) {
        Division const division = DivisionBySquareOf(factor);
        before = _mm_cvtsi32_si128(division.before);
        multiplier = QMT_V(set1_epi16)(static_cast<short>(division.multiplier));
        after = _mm_cvtsi32_si128(division.after);
    }

    QMT_INLINE Vector operator()(Vector sums) const {
        Vector const products = QMT_V(mulhi_epu16)(QMT_V(srl_epi16)(sums, before), multiplier);
        return QMT_V(srl_epi16)(products, after);
    }

private:
    __m128i before;
    Vector multiplier;
    __m128i after;
};

// Factors from 3 on: each row of a block is read in groups of four pixels, the last of them with what is left
// over. A lane works on outputs of its own, 4 of them.
template <unsigned int groups>
class AverageOfBlocks {
public:
    QMT_INLINE explicit AverageOfBlocks(BlockRow const& row)
        : block(row),
          divide(row.factor),
          pairs(RepeatPairs(row.pixelStep, 4)),
          lastPairs(RepeatPairs(row.pixelStep, row.factor - 4 * (groups - 1))),
          ones(QMT_V(set1_epi8)(1)) {}

    static std::size_t Readable(BlockRow const& block) {
        return ReadableOutputs(block, 1, (groups - 1) * 4 * block.pixelStep + 16);
    }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        Vector const zero = QMT_BITS(setzero)();
        Vector sums[4] = {zero, zero, zero, zero};
        for (unsigned int row = 0; row < block.factor; ++row, from += block.rowStep)
            for (std::size_t i = 0; i < 4; ++i)
                sums[i] = AddRow(sums[i], from + i * block.BlockStep());
        return QMT_V(packus_epi16)(Two(sums[0], sums[1]), Two(sums[2], sums[3]));
    }

private:
    QMT_INLINE Vector AddRow(Vector sum, unsigned char const* from) const {
        for (unsigned int group = 0; group < groups; ++group, from += 4 * block.pixelStep) {
            Vector const pixels = LoadLanes(from, 4 * block.BlockStep());
            Vector const inPairs = QMT_V(shuffle_epi8)(pixels, group + 1 == groups ? lastPairs : pairs);
            sum = QMT_V(add_epi16)(sum, QMT_V(maddubs_epi16)(inPairs, ones));
        }
        return sum;
    }

    // The halves of a lane of sums are two parts of one output; together they stay below 2^16.
    QMT_INLINE Vector Two(Vector a, Vector b) const {
        return divide(QMT_V(add_epi16)(QMT_V(unpacklo_epi64)(a, b), QMT_V(unpackhi_epi64)(a, b)));
    }

    BlockRow block;
    Divider divide;
    Vector pairs;
    Vector lastPairs;
    Vector ones;
};

// The last step begins where it still reads nothing behind the source; what lies beyond is left over, and the
// first such output returned.
template <class Average>
QMT_TARGET std::size_t AverageBy(BlockRow const& block, unsigned char* packed) {
    std::size_t const readable = Average::Readable(block);
    if (readable < stepOutputs)
        return 0;
    Average const average(block);
    std::size_t const blockStep = block.BlockStep();
    std::size_t const wanted = (block.count + stepOutputs - 1) / stepOutputs;
    std::size_t const steps = std::min(wanted, readable / stepOutputs);
    unsigned char const* from = block.first;
    unsigned char* to = packed;
#pragma GCC unroll 8 // the steps for small factors are short
    for (std::size_t i = 0; i < steps; ++i, from += stepOutputs * blockStep, to += sizeof(Vector))
        StoreWhole(average(from), to);
    std::size_t const lastStart = readable - stepOutputs;
    if (steps < wanted)
        StoreWhole(average(block.first + lastStart * blockStep), packed + 4 * lastStart);
    return readable;
}

using AverageFunction = std::size_t (*)(BlockRow const&, unsigned char*);

template <std::size_t pixelStep>
AverageFunction AverageFor(unsigned int factor) {
    constexpr AverageFunction blocks[] = {AverageBy<AverageOfBlocks<1>>, AverageBy<AverageOfBlocks<2>>,
                                          AverageBy<AverageOfBlocks<3>>, AverageBy<AverageOfBlocks<4>>};
    switch (factor) {
    case 1:
        return AverageBy<AverageOfOnes<pixelStep>>;
    case 2:
        return AverageBy<AverageOfTwos<pixelStep>>;
    case 4:
        return AverageBy<AverageOfFours<pixelStep>>;
    default:
        return blocks[(factor - 1) / 4];
    }
}

void AveragePixels(BlockRow const& block, unsigned char* packed) {
    AverageFunction const average =
        block.pixelStep == 4 ? AverageFor<4>(block.factor) : AverageFor<3>(block.factor);
    portable::AveragePixels(block, average(block, packed), packed);
}

// ---- averages of a plane

constexpr std::size_t laneOutputs = 16;
constexpr std::size_t planeOutputs = laneOutputs * laneCount; // at a time, 16 in each lane

class PlanePairs { // factor 2
public:
    QMT_INLINE explicit PlanePairs(BlockRow const& row) : block(row), ones(QMT_V(set1_epi8)(1)) {}

    std::size_t Readable() const { return block.readableInLowest / 2; }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        return QMT_V(packus_epi16)(Eight(from), Eight(from + 16));
    }

private:
    QMT_INLINE Vector Eight(unsigned char const* from) const {
        Vector const upper = QMT_V(maddubs_epi16)(LoadLanes(from, 2 * laneOutputs), ones);
        Vector const lower = QMT_V(maddubs_epi16)(LoadLanes(from + block.rowStep, 2 * laneOutputs), ones);
        return QMT_V(srli_epi16)(QMT_V(add_epi16)(upper, lower), 2);
    }

    BlockRow block;
    Vector ones;
};

class PlaneBlocks { // factors from 3 on
public:
    QMT_INLINE explicit PlaneBlocks(BlockRow const& row)
        : block(row), divide(row.factor), mask(Repeat(MaskOf(row.factor))) {}

    std::size_t Readable() const { return ReadableOutputs(block, 1, 16); }

    QMT_INLINE Vector operator()(unsigned char const* from) const {
        return QMT_V(packus_epi16)(Eight(from), Eight(from + 8 * block.factor));
    }

private:
    static constexpr Lane MaskOf(unsigned int factor) {
        Lane lane{};
        std::fill_n(lane.begin(), factor, static_cast<unsigned char>(0xFF));
        return lane;
    }

    // The sum of a block in two parts, one in each half of a lane.
    QMT_INLINE Vector Parts(unsigned char const* from) const {
        Vector sum = QMT_BITS(setzero)();
        for (unsigned int row = 0; row < block.factor; ++row, from += block.rowStep) {
            Vector const pixels = QMT_BITS(and)(LoadLanes(from, laneOutputs * block.factor), mask);
            sum = QMT_V(add_epi64)(sum, QMT_V(sad_epu8)(pixels, QMT_BITS(setzero)()));
        }
        return sum;
    }

    // The sums of output i and of i + 4.
    QMT_INLINE Vector Two(unsigned char const* from) const {
        Vector const left = Parts(from);
        Vector const right = Parts(from + 4 * block.factor);
        return QMT_V(add_epi64)(QMT_V(unpacklo_epi64)(left, right), QMT_V(unpackhi_epi64)(left, right));
    }

    QMT_INLINE Vector Eight(unsigned char const* from) const {
        Vector sums = Two(from);
        sums = QMT_BITS(or)(sums, QMT_V(slli_epi64)(Two(from + block.factor), 16));
        sums = QMT_BITS(or)(sums, QMT_V(slli_epi64)(Two(from + 2 * block.factor), 32));
        sums = QMT_BITS(or)(sums, QMT_V(slli_epi64)(Two(from + 3 * block.factor), 48));
        return divide(sums);
    }

    BlockRow block;
    Divider divide;
    Vector mask;
};

template <class Blocks>
QMT_TARGET std::size_t AveragePlaneBy(BlockRow const& block, unsigned char* averages) {
    Blocks const blocks(block);
    std::size_t const readable = blocks.Readable();
    std::size_t const count = block.count;
    if (readable < planeOutputs)
        return 0;
    for (std::size_t i = 0; i < count; i += planeOutputs) {
        std::size_t const at = std::min(i, readable - planeOutputs);
        StoreWhole(blocks(block.first + at * block.factor), averages + at);
    }
    return readable;
}

// A factor of 1 takes no averages of a plane.
QMT_TARGET void AveragePlane(BlockRow const& block, unsigned char* averages) {
    auto const average = block.factor == 2 ? AveragePlaneBy<PlanePairs> : AveragePlaneBy<PlaneBlocks>;
    portable::AveragePlane(block, average(block, averages), averages);
}

// ---- conversions

// A row that does not end with a step has the last outputs of the step before once more in its last. Rows
// that are shorter than a step are left to the portable loops.

struct Channels {
    Vector rows[3];
};

QMT_INLINE Channels LoadChannels(ChannelRow const& from, std::size_t at) {
    return {{LoadWhole(from[0] + at), LoadWhole(from[1] + at), LoadWhole(from[2] + at)}};
}

// B0 to B3, G0 to G3, R0 to R3 of packed pixels.
constexpr Lane byChannel{0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, none, none, none, none};

QMT_INLINE Vector LoadByChannel(unsigned char const* packed) {
    return QMT_V(shuffle_epi8)(LoadLanes(packed, 4 * laneOutputs), Repeat(byChannel));
}

// planeOutputs packed pixels, 16 in each lane.
QMT_INLINE Channels LoadPacked(unsigned char const* packed) {
    Vector const a = LoadByChannel(packed);
    Vector const b = LoadByChannel(packed + 16);
    Vector const c = LoadByChannel(packed + 32);
    Vector const d = LoadByChannel(packed + 48);
    Vector const left = QMT_V(unpacklo_epi32)(a, b);
    Vector const right = QMT_V(unpacklo_epi32)(c, d);
    return {{QMT_V(unpacklo_epi64)(left, right), QMT_V(unpackhi_epi64)(left, right),
             QMT_V(unpacklo_epi64)(QMT_V(unpackhi_epi32)(a, b), QMT_V(unpackhi_epi32)(c, d))}};
}

constexpr Lane twelve{0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, none, none, none, none};

QMT_TARGET void StorePixels(unsigned char const* packed, std::size_t count, unsigned char* to) {
    if (count < planeOutputs)
        return portable::StorePixels(packed, count, to);
    Vector const order = Repeat(twelve);
    for (std::size_t i = 0; i < count; i += planeOutputs) {
        std::size_t const at = std::min(i, count - planeOutputs);
        Vector parts[4];
        for (std::size_t part = 0; part < 4; ++part)
            parts[part] = QMT_V(shuffle_epi8)(LoadWhole(packed + 4 * at + part * sizeof(Vector)), order);
        StoreTwelves(parts[0], parts[1], parts[2], parts[3], to + 3 * at);
    }
}

// Byte k of a channel goes to byte 3 * k + channel of 48.
constexpr Lane SpreadLane(std::size_t channel, std::size_t part) {
    Lane lane{};
    for (std::size_t i = 0; i < lane.size(); ++i) {
        std::size_t const byte = 16 * part + i;
        lane[i] = byte % 3 == channel ? static_cast<unsigned char>(byte / 3) : none;
    }
    return lane;
}

constexpr std::array<std::array<Lane, 3>, 3> spreads{
    {{SpreadLane(0, 0), SpreadLane(1, 0), SpreadLane(2, 0)},
     {SpreadLane(0, 1), SpreadLane(1, 1), SpreadLane(2, 1)},
     {SpreadLane(0, 2), SpreadLane(1, 2), SpreadLane(2, 2)}}};

QMT_INLINE Vector Spread(Channels const& channels, std::size_t part) {
    Vector const b = QMT_V(shuffle_epi8)(channels.rows[0], Repeat(spreads[part][0]));
    Vector const g = QMT_V(shuffle_epi8)(channels.rows[1], Repeat(spreads[part][1]));
    Vector const r = QMT_V(shuffle_epi8)(channels.rows[2], Repeat(spreads[part][2]));
    return QMT_BITS(or)(QMT_BITS(or)(b, g), r);
}

QMT_INLINE void StoreInterleaved(Channels const& channels, unsigned char* to) {
    StoreTriple(Spread(channels, 0), Spread(channels, 1), Spread(channels, 2), to);
}

// Two coefficients of -128 to 127 for bytes that lie beside each other.
QMT_INLINE Vector Coefficients(int first, int second) {
    return QMT_V(set1_epi16)(static_cast<short>((second * 256) | (first & 0xFF)));
}

// (c.b * B + c.g * G + c.r * R + 128) >> 8 for eight outputs a lane, of which bg holds B and G, r2 R and a 2.
QMT_INLINE Vector Weighed(Vector bg, Vector r2, Vector weightBg, Vector weightR2) {
    Vector const sums =
        QMT_V(add_epi16)(QMT_V(maddubs_epi16)(bg, weightBg), QMT_V(maddubs_epi16)(r2, weightR2));
    return QMT_V(srai_epi16)(sums, 8);
}

// Y's weights lie beyond 127, so there the pixels less 128 are the signed side; the sum is less by
// 128 * (25 + 129 + 66), which is 110 << 8.
QMT_INLINE Vector Luma(Vector bg, Vector r2) {
    Vector const signedBg = QMT_BITS(xor)(bg, QMT_V(set1_epi8)(-128));
    Vector const signedR2 = QMT_BITS(xor)(r2, QMT_V(set1_epi16)(0x80));
    return Weighed(Coefficients(25, 129 - 256), Coefficients(66, 64), signedBg, signedR2);
}

QMT_INLINE Channels ToYuv(Channels const& bgr) {
    Vector const twos = QMT_V(set1_epi8)(2);
    Vector const weightU = Coefficients(112, -74);
    Vector const weightU2 = Coefficients(-38, 64);
    Vector const weightV = Coefficients(-18, -94);
    Vector const weightV2 = Coefficients(112, 64);
    Vector const bg0 = QMT_V(unpacklo_epi8)(bgr.rows[0], bgr.rows[1]);
    Vector const bg1 = QMT_V(unpackhi_epi8)(bgr.rows[0], bgr.rows[1]);
    Vector const r0 = QMT_V(unpacklo_epi8)(bgr.rows[2], twos);
    Vector const r1 = QMT_V(unpackhi_epi8)(bgr.rows[2], twos);
    Vector const y = QMT_V(packs_epi16)(Luma(bg0, r0), Luma(bg1, r1));
    Vector const u =
        QMT_V(packs_epi16)(Weighed(bg0, r0, weightU, weightU2), Weighed(bg1, r1, weightU, weightU2));
    Vector const v =
        QMT_V(packs_epi16)(Weighed(bg0, r0, weightV, weightV2), Weighed(bg1, r1, weightV, weightV2));
    return {{QMT_V(add_epi8)(y, QMT_V(set1_epi8)(110 + 16)), QMT_BITS(xor)(u, QMT_V(set1_epi8)(-128)),
             QMT_BITS(xor)(v, QMT_V(set1_epi8)(-128))}};
}

QMT_TARGET void ConvertToYuv(unsigned char const* packed, std::size_t count, OutputChannelRow const& to) {
    if (count < planeOutputs)
        return portable::ConvertToYuv(packed, count, to);
    for (std::size_t i = 0; i < count; i += planeOutputs) {
        std::size_t const at = std::min(i, count - planeOutputs);
        Channels const yuv = ToYuv(LoadPacked(packed + 4 * at));
        for (std::size_t channel = 0; channel < 3; ++channel)
            StoreWhole(yuv.rows[channel], to[channel] + at);
    }
}

// B, G and R in words, not yet limited, from Y - 16, U - 128 and V - 128. So that 16 bits hold everything,
// the part of a weight that is a multiple of 256 is added behind the shift: 298 is 256 + 42, 516 is 512 + 4,
// -208 is -256 + 48 and 409 is 512 - 103.
QMT_INLINE Channels ToWideRgb(Vector y, Vector u, Vector v) {
    Vector const luma =
        QMT_V(add_epi16)(QMT_V(mullo_epi16)(y, QMT_V(set1_epi16)(42)), QMT_V(set1_epi16)(128));
    Vector const b = QMT_V(add_epi16)(luma, QMT_V(slli_epi16)(u, 2));
    Vector const g = QMT_V(add_epi16)(QMT_V(sub_epi16)(luma, QMT_V(mullo_epi16)(u, QMT_V(set1_epi16)(100))),
                                      QMT_V(mullo_epi16)(v, QMT_V(set1_epi16)(48)));
    Vector const r = QMT_V(sub_epi16)(luma, QMT_V(mullo_epi16)(v, QMT_V(set1_epi16)(103)));
    return {{QMT_V(add_epi16)(QMT_V(srai_epi16)(b, 8), QMT_V(add_epi16)(y, QMT_V(add_epi16)(u, u))),
             QMT_V(add_epi16)(QMT_V(srai_epi16)(g, 8), QMT_V(sub_epi16)(y, v)),
             QMT_V(add_epi16)(QMT_V(srai_epi16)(r, 8), QMT_V(add_epi16)(y, QMT_V(add_epi16)(v, v)))}};
}

QMT_INLINE Channels ToRgb(Channels const& yuv) {
    Vector const zero = QMT_BITS(setzero)();
    Vector const black = QMT_V(set1_epi16)(16);
    Vector const grey = QMT_V(set1_epi16)(128);
    Channels const low = ToWideRgb(QMT_V(sub_epi16)(QMT_V(unpacklo_epi8)(yuv.rows[0], zero), black),
                                   QMT_V(sub_epi16)(QMT_V(unpacklo_epi8)(yuv.rows[1], zero), grey),
                                   QMT_V(sub_epi16)(QMT_V(unpacklo_epi8)(yuv.rows[2], zero), grey));
    Channels const high = ToWideRgb(QMT_V(sub_epi16)(QMT_V(unpackhi_epi8)(yuv.rows[0], zero), black),
                                    QMT_V(sub_epi16)(QMT_V(unpackhi_epi8)(yuv.rows[1], zero), grey),
                                    QMT_V(sub_epi16)(QMT_V(unpackhi_epi8)(yuv.rows[2], zero), grey));
    return {{QMT_V(packus_epi16)(low.rows[0], high.rows[0]), QMT_V(packus_epi16)(low.rows[1], high.rows[1]),
             QMT_V(packus_epi16)(low.rows[2], high.rows[2])}};
}

QMT_TARGET void ConvertToRgb(ChannelRow const& from, std::size_t count, unsigned char* to) {
    if (count < planeOutputs)
        return portable::ConvertToRgb(from, count, to);
    for (std::size_t i = 0; i < count; i += planeOutputs) {
        std::size_t const at = std::min(i, count - planeOutputs);
        StoreInterleaved(ToRgb(LoadChannels(from, at)), to + 3 * at);
    }
}

// ---- doubling

// Of 8 pixels, 24 bytes, that become 48: where the 16 bytes begin that a third of them is taken from.
constexpr std::array<std::size_t, 3> doublingStart{0, 6, 8};

constexpr Lane DoublingLane(std::size_t part) {
    Lane lane{};
    for (std::size_t i = 0; i < lane.size(); ++i) {
        std::size_t const byte = 16 * part + i;
        lane[i] = static_cast<unsigned char>(byte / 6 * 3 + byte % 3 - doublingStart[part]);
    }
    return lane;
}

constexpr std::array<Lane, 3> doublings{DoublingLane(0), DoublingLane(1), DoublingLane(2)};

QMT_INLINE Vector DoubledPart(unsigned char const* from, std::size_t part) {
    return QMT_V(shuffle_epi8)(LoadLanes(from + doublingStart[part], 24), Repeat(doublings[part]));
}

QMT_TARGET void DoublePixels(unsigned char const* from, std::size_t count, unsigned char* to) {
    constexpr std::size_t step = 8 * laneCount;
    if (count < step)
        return portable::DoublePixels(from, count, to);
    for (std::size_t i = 0; i < count; i += step) {
        std::size_t const at = std::min(i, count - step);
        unsigned char const* const pixels = from + 3 * at;
        StoreTriple(DoubledPart(pixels, 0), DoubledPart(pixels, 1), DoubledPart(pixels, 2), to + 6 * at);
    }
}

// 16 outputs in each lane become 32, that is 96 bytes.
QMT_INLINE void StoreDoubled(Channels const& rgb, unsigned char* to) {
    Vector const b = rgb.rows[0];
    Vector const g = rgb.rows[1];
    Vector const r = rgb.rows[2];
    Channels const left{{QMT_V(unpacklo_epi8)(b, b), QMT_V(unpacklo_epi8)(g, g), QMT_V(unpacklo_epi8)(r, r)}};
    Channels const right{
        {QMT_V(unpackhi_epi8)(b, b), QMT_V(unpackhi_epi8)(g, g), QMT_V(unpackhi_epi8)(r, r)}};
    for (std::size_t part = 0; part < 3; ++part) {
        StoreLanes(Spread(left, part), to + 16 * part, 96);
        StoreLanes(Spread(right, part), to + 48 + 16 * part, 96);
    }
}

QMT_TARGET void DoubleYuv(ChannelRow const& from, std::size_t count, unsigned char* to) {
    if (count < planeOutputs)
        return portable::DoubleYuv(from, count, to);
    for (std::size_t i = 0; i < count; i += planeOutputs) {
        std::size_t const at = std::min(i, count - planeOutputs);
        StoreDoubled(ToRgb(LoadChannels(from, at)), to + 6 * at);
    }
}

} // namespace

constexpr Kernels QMT_TABLE{.name = QMT_NAME,
                            .averagePixels = AveragePixels,
                            .averagePlane = AveragePlane,
                            .storePixels = StorePixels,
                            .convertToYuv = ConvertToYuv,
                            .convertToRgb = ConvertToRgb,
                            .doublePixels = DoublePixels,
                            .doubleYuv = DoubleYuv};

} // namespace QMT::scaling

// NOLINTEND(misc-definitions-in-headers)
