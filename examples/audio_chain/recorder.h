// The thread at the chain's end.
#pragma once

#include <exception>

#include "chain.h"
#include "qmt/general/containers.h"
#include "qmt/general/events.h"
#include "qmt/general/threads.h"
#include "recording_writer.h"

namespace Audio {

// Reads the blocks that come out of the chain and writes them to a recording, on a thread of its own.
//
// The chain and the recording must outlive the recorder. The writer of the chain calls `Start`, then waits
// for the events when he must wait: `RoomMade` follows each block that has been read, `Ended` the last one or
// a failure. When it has ended, `ThrowFailure` tells how. The destructor ends a thread that still runs, after
// the block under way.
//
//     Recorder recorder(chain, recording);
//     recorder.Start();
//     ... // write all blocks, and push on until recorder.Ended() is signalled
//     recorder.ThrowFailure();
class Recorder : private QMT::Thread {
public:
    Recorder(AudioChain& audioChain, RecordingWriter& recording);
    ~Recorder() override;

    // Starts the thread. Throws a Failure if that cannot be done.
    void Start();

    // Signalled when a block has been read since the last wait.
    QMT::Event& RoomMade() { return roomMade; }

    // Signalled, for good, when the thread is done.
    QMT::Event& Ended() { return ended; }

    // Throws again what ended the thread before the last block, if anything did. Once it has ended.
    void ThrowFailure() const;

private:
    QMT::ErrorInfo* RunCycle(bool& finished) override;
    bool RecordBlock();

    AudioChain& chain;
    RecordingWriter& output;
    QMT::Event stop{true};
    QMT::Event roomMade{false};
    QMT::Event ended{true};
    QMT::SVArray<QMT::Event*, QMT::Event*> stopOrBlock;
    QMT::SVArray<QMT::Event*, QMT::Event*> endedOnly;
    std::exception_ptr failure;
    bool started = false;
    bool isFirst = true;
};

} // namespace Audio
