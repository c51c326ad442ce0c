// A picture of 1920 x 1080 shrunk by 2 and by 4, plain and to planar YUV, and doubled, beside libyuv and
// libswscale. What copying the same source takes, and filling the same doubled output, is measured with them.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <libyuv.h>
#include <memory>
#include <string>
#include <vector>

#include "qmt/helpers/rgb_scaling.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int width = 1920;
constexpr int height = 1080;

Bytes NoisyBytes(std::size_t size) {
    Bytes bytes(size);
    std::uint32_t random = 1;
    for (unsigned char& byte : bytes) {
        random = random * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(random >> 24);
    }
    return bytes;
}

// What a benchmark works on: pixels of so many bytes, shrunk by a factor.
struct Task {
    int bytesPerPixel;
    int factor;

    std::size_t SourceSize() const {
        return std::size_t{width} * height * static_cast<unsigned>(bytesPerPixel);
    }

    int OutputWidth() const { return width / factor; }

    int OutputHeight() const { return height / factor; }

    std::size_t OutputSize(std::size_t bytes) const {
        return static_cast<std::size_t>(OutputWidth()) * static_cast<std::size_t>(OutputHeight()) * bytes;
    }
};

class QmtShrinker {
public:
    QmtShrinker(Task const& work, bool isYuv)
        : task(work), conversion(isYuv ? QMT::RGBToYUV : QMT::RGBPlain), output(work.OutputSize(3)) {}

    void operator()(unsigned char const* source) {
        QMT::DownsizeRGB(source, width, height, static_cast<unsigned>(task.bytesPerPixel),
                         static_cast<unsigned>(task.factor), output.data(),
                         static_cast<unsigned>(task.OutputWidth()),
                         static_cast<unsigned>(task.OutputHeight()), conversion, 0);
        benchmark::ClobberMemory();
    }

private:
    Task task;
    QMT::RGBConversionType conversion;
    Bytes output;
};

// It scales pixels of four bytes only, so those of three are widened first, and plain output stays four bytes
// wide.
class LibyuvShrinker {
public:
    LibyuvShrinker(Task const& work, bool withYuv)
        : task(work),
          isYuv(withYuv),
          wide(work.bytesPerPixel == 3 ? std::size_t{width} * height * 4 : 0),
          scaled(work.OutputSize(4)),
          planes(work.OutputSize(3)) {}

    void operator()(unsigned char const* source) {
        if (task.bytesPerPixel == 3) {
            libyuv::RGB24ToARGB(source, 3 * width, wide.data(), 4 * width, width, height);
            source = wide.data();
        }
        int const w = task.OutputWidth();
        int const h = task.OutputHeight();
        libyuv::ARGBScale(source, 4 * width, width, height, scaled.data(), 4 * w, w, h, libyuv::kFilterBox);
        if (isYuv) {
            unsigned char* const y = planes.data();
            std::size_t const plane = task.OutputSize(1);
            libyuv::ARGBToI444(scaled.data(), 4 * w, y, w, y + plane, w, y + 2 * plane, w, w, h);
        }
        benchmark::ClobberMemory();
    }

private:
    Task task;
    bool isYuv;
    Bytes wide;
    Bytes scaled;
    Bytes planes;
};

// libswscale wants room behind its rows.
constexpr std::size_t swscaleRoom = 64;

class Swscaler {
public:
    Swscaler(Task const& work, bool isYuv)
        : Swscaler(work, work.OutputWidth(), work.OutputHeight(),
                   isYuv ? AV_PIX_FMT_YUV444P : AV_PIX_FMT_BGR24, SWS_AREA) {}

    Swscaler(Task const& work, int outputWidth, int outputHeight, AVPixelFormat format, int method)
        : task(work),
          isPlanar(format == AV_PIX_FMT_YUV444P),
          w(outputWidth),
          plane(static_cast<std::size_t>(outputWidth) * static_cast<std::size_t>(outputHeight)),
          output(3 * plane + swscaleRoom),
          context(sws_getContext(width, height, work.bytesPerPixel == 4 ? AV_PIX_FMT_BGRA : AV_PIX_FMT_BGR24,
                                 outputWidth, outputHeight, format, method, nullptr, nullptr, nullptr),
                  sws_freeContext) {}

    void operator()(unsigned char const* source) {
        unsigned char const* const sources[] = {source};
        int const sourceRows[] = {task.bytesPerPixel * width};
        unsigned char* const y = output.data();
        unsigned char* const planes[] = {y, y + plane, y + 2 * plane};
        int const planeRows[] = {isPlanar ? w : 3 * w, w, w};
        sws_scale(context.get(), sources, sourceRows, 0, height, planes, planeRows);
        benchmark::ClobberMemory();
    }

private:
    Task task;
    bool isPlanar;
    int w;
    std::size_t plane;
    Bytes output;
    std::unique_ptr<SwsContext, decltype(&sws_freeContext)> context;
};

class Copier {
public:
    Copier(Task const& work, bool) : output(work.SourceSize()) {}

    void operator()(unsigned char const* source) {
        std::memcpy(output.data(), source, output.size());
        benchmark::ClobberMemory();
    }

private:
    Bytes output;
};

constexpr std::size_t doubledSize = std::size_t{width} * height * 12;

class QmtDoubler {
public:
    void operator()(unsigned char const* source) {
        QMT::DoubleUpRGB(source, width, height, output.data(), conversion);
        benchmark::ClobberMemory();
    }

    explicit QmtDoubler(QMT::RGBConversionType wanted) : conversion(wanted) {}

private:
    QMT::RGBConversionType conversion;
    Bytes output = Bytes(doubledSize);
};

// Fills what doubling fills.
class Filler {
public:
    void operator()(unsigned char const* source) {
        std::memset(output.data(), source[0], output.size());
        benchmark::ClobberMemory();
    }

private:
    Bytes output = Bytes(doubledSize);
};

// Copies into each row that doubling fills, always from the same row, which stays in the innermost cache.
class RowCopier {
public:
    void operator()(unsigned char const* source) {
        for (std::size_t row = 0; row < doubledSize; row += rowSize)
            std::memcpy(output.data() + row, source, rowSize);
        benchmark::ClobberMemory();
    }

private:
    static constexpr std::size_t rowSize = std::size_t{width} * 6;
    Bytes output = Bytes(doubledSize);
};

template <class Scaler>
void Run(benchmark::State& state, Scaler scaler, std::size_t sourceSize) {
    Bytes const source = NoisyBytes(sourceSize + swscaleRoom);
    for ([[maybe_unused]] auto step : state)
        scaler(source.data());
}

template <class Shrinker>
void AddShrinker(std::string const& who, bool isYuv) {
    for (int const bytesPerPixel : {4, 3})
        for (int const factor : {2, 4}) {
            std::string const name = std::string("Rgb/Shrink") + (isYuv ? "ToYuv/" : "/") + who +
                                     "/bytes:" + std::to_string(bytesPerPixel) +
                                     "/by:" + std::to_string(factor);
            Task const task{bytesPerPixel, factor};
            benchmark::RegisterBenchmark(name.c_str(), [task, isYuv](benchmark::State& state) {
                Run(state, Shrinker(task, isYuv), task.SourceSize());
            });
        }
}

template <class MakeDoubler>
void AddDoubler(char const* name, MakeDoubler const& make) {
    benchmark::RegisterBenchmark(
        name, [make](benchmark::State& state) { Run(state, make(), std::size_t{width} * height * 3); });
}

int Register() {
    for (bool const isYuv : {false, true}) {
        AddShrinker<QmtShrinker>("Qmt", isYuv);
        AddShrinker<LibyuvShrinker>("Libyuv", isYuv);
        AddShrinker<Swscaler>("Swscale", isYuv);
    }
    AddShrinker<Copier>("Memcpy", false);
    AddDoubler("Rgb/Double/Qmt", [] { return QmtDoubler(QMT::RGBPlain); });
    AddDoubler("Rgb/DoubleFromYuv/Qmt", [] { return QmtDoubler(QMT::YUVToRGB); });
    AddDoubler("Rgb/Double/Memset", [] { return Filler(); });
    AddDoubler("Rgb/Double/RowCopies", [] { return RowCopier(); });
    AddDoubler("Rgb/Double/Swscale", [] {
        return Swscaler({3, 1}, 2 * width, 2 * height, AV_PIX_FMT_BGR24, SWS_POINT);
    });
    return 0;
}

[[maybe_unused]] int const registered = Register();

} // namespace
