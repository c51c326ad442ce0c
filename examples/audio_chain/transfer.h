// A recording's way through the chain.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "chain.h"
#include "level_meter.h"
#include "progress_bar.h"
#include "recorder.h"
#include "recording_reader.h"
#include "recording_writer.h"

namespace Audio {

// What a run has shown.
struct TransferFigures {
    std::uint64_t framesIn;
    std::uint64_t framesOut;
    LevelMeter inputLevel;
    LevelMeter outputLevel;
    std::uint64_t sourceFull; // blocks for which the first ring had no room at once
    FullRings furtherFull;
    double seconds;
    std::vector<QMT::LinkCounts> links;
};

// Sends a recording through a chain into another recording, once: this thread reads and writes into the
// chain, a recorder takes what comes out.
//
// Both recordings must outlive the object. After any end of `Run` the chain and the recorder's thread stand
// still when the object has been destroyed.
//
//     TransferFigures const figures = Transfer(input, output, settings).Run();
class Transfer {
public:
    Transfer(RecordingReader& inputRecording, RecordingWriter& outputRecording,
             ChainSettings const& settings);

    // Returns when everything has been recorded. Throws a Failure when reading or writing fails, Interrupted
    // when the user asks for the end; not everything is recorded then.
    TransferFigures Run();

private:
    void SendEverything();
    AudioBlock WaitForRoom();
    bool FillBlock(AudioBlock block);
    void PushUntilRecorded();
    bool WaitForRecorder();
    TransferFigures Figures(double seconds);

    RecordingReader& input;
    RecordingWriter& output;
    AudioChain chain;
    Recorder recorder; // stops before the chain goes
    QMT::SVArray<QMT::Event*, QMT::Event*> endedOrRoom;
    ProgressBar progress;
    LevelMeter inputLevel;
    std::uint64_t framesIn = 0;
    std::uint64_t sourceFull = 0;
    int looksInVain = 0; // in a row
};

} // namespace Audio
