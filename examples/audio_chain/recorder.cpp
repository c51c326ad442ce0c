#include "recorder.h"

#include <memory>
#include <utility>

#include "error_report.h"
#include "failure.h"
#include "qmt/diagnostics/realtime_report.h"

namespace Audio {

namespace {

constexpr int stopIndex = 0;

} // namespace

Recorder::Recorder(AudioChain& audioChain, RecordingWriter& recording)
    : Thread("recorder", &ended, true), chain(audioChain), output(recording) {
    stopOrBlock.Add(&stop);
    stopOrBlock.Add(&chain.BlockReady());
    endedOnly.Add(&ended);
}

Recorder::~Recorder() {
    if (!started)
        return;
    stop.Signal();
    QMT::WaitOnEvents(endedOnly, -1);
}

void Recorder::Start() {
    if (std::unique_ptr<QMT::ErrorInfo> error{StartRunning()}) {
        LogError(error.release());
        throw Failure("cannot start a thread");
    }
    started = true;
}

void Recorder::ThrowFailure() const {
    if (failure)
        std::rethrow_exception(failure);
}

QMT::ErrorInfo* Recorder::RunCycle(bool& finished) {
    if (QMT::WaitOnEvents(stopOrBlock, -1) == stopIndex) {
        finished = true;
        return nullptr;
    }
    chain.BlockReady().Reset();
    try {
        finished = RecordBlock();
    } catch (...) {
        failure = std::current_exception();
        finished = true;
    }
    return nullptr;
}

// True for the last block.
bool Recorder::RecordBlock() {
    std::optional<AudioBlock> const block = chain.BeginRead();
    if (!block)
        return false;
    bool const last = block->IsLast();
    if (std::exchange(isFirst, false))
        QMT::REALTIMETRACE(u"first block recorded", QMT::NoTraceValue);
    if (last)
        QMT::REALTIMETRACE(u"last block recorded", QMT::NoTraceValue);
    output.Write(block->Samples());
    chain.EndRead();
    roomMade.Signal();
    return last;
}

} // namespace Audio
