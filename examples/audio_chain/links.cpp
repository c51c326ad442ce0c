#include "links.h"

#include <algorithm>
#include <utility>

#include "qmt/diagnostics/realtime_report.h"

namespace Audio {

// [start]
void BlockStage::Process() {
    QMT::RotatingFixedBuffers& input = GetPreceeding()->GetBuffers();
    unsigned char** const from = input.BeginRead();
    if (from == nullptr)
        return;
    unsigned char** const to = GetBuffers().BeginWrite();
    if (to == nullptr) {
        ++fullRings;
        QMT::REALTIMETRACE(u"full ring behind stage", number);
        return;
    }
    if (std::exchange(isFirst, false))
        QMT::REALTIMETRACE(u"first block at stage", number);
    Turn(from, to);
    input.EndRead();
    GetBuffers().EndWrite();
}

// [end]

void GainStage::Turn(unsigned char** from, unsigned char** to) {
    AudioBlock const input(*from);
    AudioBlock const output(*to);
    output.SetShape(input);
    std::ranges::transform(input.Samples(), output.Samples().begin(),
                           [this](double sample) { return factor * sample; });
}

void BandStage::Turn(unsigned char** from, unsigned char** to) {
    AudioBlock const input(*from);
    AudioBlock const output(*to);
    output.SetShape(input);
    filter.Apply(input.Samples(), output.Samples());
}

void MeterStage::Turn(unsigned char** from, unsigned char** to) {
    meter.Add(AudioBlock(*from).Samples());
    std::swap(*from, *to);
}

void BandArray::AddBands() {
    for (BandStage* const band : bands)
        AddParallelLink(band);
}

void BandArray::Process() {
    if (GetPreceeding()->GetBuffers().TestRead() && !GetBuffers().TestWrite())
        CountFullRing();
    ParallelPushLinkArray::Process();
}

void BandArray::CountFullRing() {
    ++fullRings;
    QMT::REALTIMETRACE(u"full ring behind stage", StageNumber::ofBands);
}

// There is room for the result, and each band has a block: the array has seen to both.
void BandArray::AfterParallelLinks() {
    AudioBlock const result(GetBuffers().ForOverWrite());
    std::array<std::span<double const>, bandCount> parts;
    for (std::size_t i = 0; i < bandCount; ++i) {
        AudioBlock const part(*bands[i]->GetBuffers().BeginRead());
        result.SetShape(part);
        parts[i] = part.Samples();
    }
    std::span<double> const mix = result.Samples();
    for (std::size_t i = 0; i < mix.size(); ++i)
        mix[i] = factors[0] * parts[0][i] + factors[1] * parts[1][i] + factors[2] * parts[2][i];
    for (BandStage* const band : bands)
        band->GetBuffers().EndRead();
}

} // namespace Audio
