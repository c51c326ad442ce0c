#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "diagnostics/entry_memory.h"
#include "diagnostics/report_state.h"
#include "qmt/diagnostics/realtime_report.h"

namespace QMT {

RealTimeTrace::RealTimeTrace(String text, int value)
    : traceText(std::move(text)), traceValue(value), tracePointer(nullptr) {}

RealTimeTrace::RealTimeTrace(void* pointer, String text)
    : traceText(std::move(text)), traceValue(NoTraceValue), tracePointer(pointer) {}

RealTimeTrace::~RealTimeTrace() = default;

namespace {

unsigned int Low32Bits(void* pointer) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

} // namespace

void RealTimeTrace::WriteItem(FormatableTextFile& file) {
    file << u"(" << leadzero << width(8) << addTime - firstAddTime << u") " << traceText;
    if (tracePointer)
        file << u" " << hex(8) << Low32Bits(tracePointer);
    else if (HasValue())
        file << u" " << traceValue;
    file << newline;
}

void RealTimeTrace::DescribeEvent(ViewerEvent& event) {
    event.SetName(traceText);
    if (tracePointer)
        event.AddText(u"pointer", String() << hex(0) << Low32Bits(tracePointer));
    else if (HasValue())
        event.AddNumber(u"value", traceValue);
}

// A trace whose text, up to its first zero, stands behind it in the same piece of memory until it is written.
class ShortTrace final : public RealTimeTrace {
public:
    static constexpr std::size_t mostUnits = 65; // with the terminator

    static ShortTrace* Make(CodeUnit const* text, std::size_t size, int value, void* pointer) {
        void* const memory = EntryMemory::Allocate(sizeof(ShortTrace) + size * sizeof(CodeUnit));
        auto* const trace = ::new (memory) ShortTrace(value, pointer);
        std::copy_n(text, size, trace->Units());
        return trace;
    }

    static void operator delete(void* memory) noexcept { EntryMemory::Free(memory); }

    void WriteItem(FormatableTextFile& file) override {
        traceText = String(Units());
        RealTimeTrace::WriteItem(file);
    }

private:
    using RealTimeTrace::RealTimeTrace;

    CodeUnit* Units() { return reinterpret_cast<CodeUnit*>(this + 1); }
};

namespace {

void AddTrace(String text, int value, void* pointer) {
    if (reportState.Refuses())
        return;
    std::size_t const size = text.Len() + 1;
    if (size <= ShortTrace::mostUnits && text.View().find(CodeUnit{}) == text.View().npos)
        RealTimeReport::AddReport(ShortTrace::Make(text, size, value, pointer));
    else if (pointer)
        RealTimeReport::AddReport(new RealTimeTrace(pointer, std::move(text)));
    else
        RealTimeReport::AddReport(new RealTimeTrace(std::move(text), value));
}

} // namespace

void RealTimeTrace::AddLiteral(CodeUnit const* text, std::size_t size, int value) {
    if (size > ShortTrace::mostUnits)
        AddTrace(text, value, nullptr);
    else if (!reportState.Refuses())
        RealTimeReport::AddReport(ShortTrace::Make(text, size, value, nullptr));
}

// ---- the free functions

namespace {

// Builds the text of a dump: each step through the data reads a whole Sample, which append(text, sample)
// adds.
template <class Sample, class Append>
void AppendDump(String& text, unsigned char const* data, std::size_t size, Append append) {
    constexpr std::size_t unitsForByte = 4;
    text.SetBufferIncrementSize(unitsForByte * size);
    text << u", Buffer size: " << static_cast<int>(size) << u" ";
    for (std::size_t offset = 0; offset < size; offset += sizeof(Sample)) {
        Sample sample;
        std::memcpy(&sample, data + offset, sizeof sample);
        append(text, sample);
        text << u",";
    }
}

template <class Sample, class Append>
void TraceAudio(String text, unsigned char const* data, std::size_t size, Append append) {
    AppendDump<Sample>(text, data, size, append);
    text << u"[END]";
    REALTIMETRACE(std::move(text), NoTraceValue);
}

void AppendScaled(String& text, float sample) {
    constexpr double beyond64Bits = 9223372036854775808.0;
    double const scaled = static_cast<double>(sample) * 32768.0;
    std::int64_t const whole = std::abs(scaled) < beyond64Bits ? static_cast<std::int64_t>(scaled) : 0;
    text << leadzero << hex(2) << static_cast<std::uint32_t>(whole);
}

} // namespace

void REALTIMETRACE(String text, int value) {
    AddTrace(std::move(text), value, nullptr);
}

void REALTIMETRACE(void* pointer, String text) {
    AddTrace(std::move(text), NoTraceValue, pointer);
}

void REALTIMETRACE(String text, unsigned char* data, size_t size) {
    AppendDump<unsigned char>(text, data, size,
                              [](String& dump, unsigned int byte) { dump << hex(2) << byte; });
    REALTIMETRACE(std::move(text), NoTraceValue);
}

void REALTIMETRACE_AUDIOFLOAT(String text, unsigned char* data, size_t size) {
    TraceAudio<float>(std::move(text), data, size,
                      [](String& dump, float sample) { dump << static_cast<double>(sample); });
}

void REALTIMETRACE_AUDIOSHORT(String text, unsigned char* data, size_t size) {
    TraceAudio<std::int16_t>(std::move(text), data, size, [](String& dump, int sample) { dump << sample; });
}

void REALTIMETRACE_AUDIOFLOAT_AS_SHORT(String text, unsigned char* data, size_t size) {
    TraceAudio<float>(std::move(text), data, size, AppendScaled);
}

} // namespace QMT
