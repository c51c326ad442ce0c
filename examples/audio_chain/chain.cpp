#include "chain.h"

#include <initializer_list>

namespace Audio {

AudioChain::AudioChain(ChainSettings const& settings)
    : blockSamples(settings.blockFrames * settings.channels),
      gain(settings.gain),
      low(ofLow, BandFilter(LowPass(settings.lowEdge, settings.sampleRate, settings.channels), std::nullopt)),
      middle(ofMiddle, BandFilter(LowPass(settings.highEdge, settings.sampleRate, settings.channels),
                                  LowPass(settings.lowEdge, settings.sampleRate, settings.channels))),
      high(ofHigh,
           BandFilter(std::nullopt, LowPass(settings.highEdge, settings.sampleRate, settings.channels))),
      bands({&low, &middle, &high}, settings.bandGains) {
    QMT::ChainLink::SetThreadPoolToUse(&pool);
    ConfigureRings(static_cast<int>(settings.buffers) + 1); // one slot of a ring is never in use
    Join();
    NameLinks();
}

// A band has one block under way at most: the array holds it back until the shared block is free.
void AudioChain::ConfigureRings(int slots) {
    std::size_t const bytes = AudioBlock::BytesFor(blockSamples);
    for (QMT::ChainLink* const link : std::initializer_list<QMT::ChainLink*>{&source, &gain, &bands, &meter})
        link->GetBuffers().SetProperties(slots, bytes);
    for (BandStage* const band : {&low, &middle, &high})
        band->GetBuffers().SetProperties(2, bytes);
}

// The pushes end at the meter, whose ring tells the reader of each block.
void AudioChain::Join() {
    source.LinkToFollowing(&gain);
    gain.LinkToFollowing(&bands);
    bands.AddBands();
    bands.LinkToFollowing(&meter);
    meter.CoupleToPredecessor();
    sink.SetPreceedingLink(&meter);
    meter.GetBuffers().SetEndWriteNotifyRequired(&blockReady);
}

void AudioChain::NameLinks() {
    source.SetTraceName(u"source");
    gain.SetTraceName(u"gain");
    low.SetTraceName(u"low");
    middle.SetTraceName(u"middle");
    high.SetTraceName(u"high");
    bands.SetTraceName(u"bands");
    meter.SetTraceName(u"meter");
    sink.SetTraceName(u"sink");
}

AudioChain::~AudioChain() {
    Stop();
    QMT::ChainLink::SetThreadPoolToUse(nullptr);
}

// [start]
std::optional<AudioBlock> AudioChain::BeginWrite() {
    if (unsigned char** const slot = source.BeginWrite())
        return AudioBlock(*slot);
    source.PushAgain();
    return std::nullopt;
}

// [end]

std::optional<AudioBlock> AudioChain::BeginRead() {
    if (unsigned char** const slot = sink.BeginRead())
        return AudioBlock(*slot);
    return std::nullopt;
}

// [start]
// Both ends first, so that the array has stopped before its bands, which no stop of the chain reaches.
void AudioChain::Stop() {
    source.StopLinkedProcessing();
    sink.StopLinkedProcessing();
    for (BandStage* const band : {&low, &middle, &high})
        band->StopLinkedProcessing();
}

// [end]

FullRings AudioChain::CountFullRings() const {
    return {gain.FullRings(), bands.FullRings(), meter.FullRings()};
}

} // namespace Audio
