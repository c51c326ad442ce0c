#include "transfer.h"

#include <chrono>
#include <optional>

#include "failure.h"
#include "qmt/diagnostics/realtime_report.h"
#include "system.h"

namespace Audio {

Transfer::Transfer(RecordingReader& inputRecording, RecordingWriter& outputRecording,
                   ChainSettings const& settings)
    : input(inputRecording),
      output(outputRecording),
      chain(settings),
      recorder(chain, output),
      progress(input.Frames()) {
    endedOrRoom.Add(&recorder.Ended());
    endedOrRoom.Add(&recorder.RoomMade());
}

TransferFigures Transfer::Run() {
    auto const start = std::chrono::steady_clock::now();
    QMT::REALTIMETRACE(u"begin, samples in a block", static_cast<int>(chain.BlockSamples()));
    recorder.Start();
    SendEverything();
    PushUntilRecorded();
    chain.Stop();
    QMT::REALTIMETRACE(u"end, frames", static_cast<int>(framesIn));
    std::chrono::duration<double> const duration = std::chrono::steady_clock::now() - start;
    return Figures(duration.count());
}

// A recording without frames sends one block too: the one that says it is the last.
void Transfer::SendEverything() {
    bool isLast = false;
    while (!isLast) {
        ThrowIfInterrupted();
        isLast = FillBlock(WaitForRoom());
        chain.EndWrite();
        progress.Show(framesIn);
    }
}

// [start]
AudioBlock Transfer::WaitForRoom() {
    std::optional<AudioBlock> block = chain.BeginWrite();
    if (!block) {
        ++sourceFull;
        QMT::REALTIMETRACE(u"full ring behind the source", QMT::NoTraceValue);
    }
    while (!block) {
        if (WaitForRecorder())
            recorder.ThrowFailure();
        block = chain.BeginWrite();
    }
    return *block;
}

// [end]

// True for the last block.
bool Transfer::FillBlock(AudioBlock block) {
    block.SetShape(chain.BlockSamples(), false);
    std::span<double> const room = block.Samples();
    std::size_t const count = input.Read(room);
    bool const isLast = count < room.size();
    block.SetShape(count, isLast);
    inputLevel.Add(block.Samples());
    framesIn += count / static_cast<std::size_t>(input.Format().channels);
    return isLast;
}

// Blocks whose pushes were used up at full rings still stand in the chain; room may be made after the last
// of them was written, so the pushing goes on to the end.
void Transfer::PushUntilRecorded() {
    do
        chain.PushAgain();
    while (!WaitForRecorder());
    recorder.ThrowFailure();
}

// Waits for the recorder to make room or to end; true when it has ended. Looks for an interruption now and
// then, which may come when nothing moves, and gives up a chain in which nothing moves at all: the system has
// refused a stage its thread.
bool Transfer::WaitForRecorder() {
    constexpr int endedIndex = 0;
    constexpr int timeUp = -1;
    constexpr int millisecondsBetweenLooks = 50;
    constexpr int mostLooksInVain = 30'000 / millisecondsBetweenLooks;
    int const signalled = QMT::WaitOnEvents(endedOrRoom, millisecondsBetweenLooks);
    ThrowIfInterrupted();
    looksInVain = signalled == timeUp ? looksInVain + 1 : 0;
    if (looksInVain > mostLooksInVain)
        throw Failure("the chain stands still; the error log may tell why");
    return signalled == endedIndex;
}

TransferFigures Transfer::Figures(double seconds) {
    return {framesIn,   output.Frames(),        inputLevel, chain.OutputLevel(),
            sourceFull, chain.CountFullRings(), seconds,    chain.CountLinks()};
}

} // namespace Audio
