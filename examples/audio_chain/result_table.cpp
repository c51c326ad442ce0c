#include "result_table.h"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <string>

#include "qmt/helpers/system.h"

namespace Audio {

namespace {

void PrintPair(char const* name, double input, double output) {
    std::printf("%-22s %14.2f %14.2f\n", name, input, output);
}

void PrintCount(char const* name, std::uint64_t count) {
    std::printf("%-22s %14" PRIu64 "\n", name, count);
}

void PrintSpeed(RunResult const& result) {
    double const duration = static_cast<double>(result.figures.framesIn) / result.sampleRate;
    double const seconds = result.figures.seconds;
    std::printf("%-22s %14.1f   times real time (%.3f s in %.3f s)\n", "speed",
                seconds > 0 ? duration / seconds : 0, duration, seconds);
}

void PrintFullRings(TransferFigures const& figures) {
    FullRings const further = figures.furtherFull;
    std::printf("%-22s %14" PRIu64 "   (source %" PRIu64 ", gain %" PRIu64 ", bands %" PRIu64
                ", meter %" PRIu64 ")\n",
                "found a ring full", figures.sourceFull + further.gain + further.bands + further.meter,
                figures.sourceFull, further.gain, further.bands, further.meter);
}

void PrintCheck(double difference) {
    std::printf("%-22s output %s input to within -120 dBFS (largest difference %.2f dBFS)\n",
                "flat gains:", difference <= allowedDifference ? "equals" : "DOES NOT EQUAL",
                ToDbfs(difference));
}

std::string Narrow(QMT::String const& text) {
    constexpr unsigned int utf8 = 65001;
    std::unique_ptr<char[]> const bytes(QMT::ConvertToMultibyte(text, utf8, nullptr));
    return bytes.get();
}

void PrintLink(QMT::LinkCounts const& link) {
    std::printf("%-8s %-13s %6d %8" PRIu64 " %8" PRIu64 " %8" PRIu64 " %8" PRIu64 " %8" PRIu64 " %8d\n",
                Narrow(link.name).c_str(), Narrow(NameOf(link.kind)).c_str(), link.slots, link.pushes,
                link.pulls, link.processCalls, link.ring.foundFull, link.ring.foundEmpty,
                link.ring.highestFill);
}

void PrintLinks(std::vector<QMT::LinkCounts> const& links) {
    std::printf("\n%-8s %-13s %6s %8s %8s %8s %8s %8s %8s\n", "link", "", "slots", "pushes", "pulls", "calls",
                "full", "empty", "highest");
    for (QMT::LinkCounts const& link : links)
        PrintLink(link);
}

} // namespace

void PrintTable(RunResult const& result) {
    TransferFigures const& figures = result.figures;
    std::printf("%-22s %14s %14s\n", "", "input", "output");
    std::printf("%-22s %14" PRIu64 " %14" PRIu64 "\n", "frames", figures.framesIn, figures.framesOut);
    PrintPair("peak, dBFS", ToDbfs(figures.inputLevel.Peak()), ToDbfs(figures.outputLevel.Peak()));
    PrintPair("RMS, dBFS", ToDbfs(figures.inputLevel.Rms()), ToDbfs(figures.outputLevel.Rms()));
    PrintSpeed(result);
    PrintFullRings(figures);
    PrintCount("clipped samples", result.clippedSamples);
    if (result.unusableSamples > 0)
        PrintCount("no numbers, taken as 0", result.unusableSamples);
    if (result.largestDifference)
        PrintCheck(*result.largestDifference);
    PrintLinks(figures.links);
}

} // namespace Audio
