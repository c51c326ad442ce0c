#include "chain/party_gate.h"

namespace QMT {

void PartyGate::Join(CountingSemaphore const* endReadSemaphore) {
    joined = endReadSemaphore;
    released = ended.load();
    // Both places exist before the stage runs, so that a wait allocates nothing.
    waitEvents.RemoveAll();
    waitEvents.Add(&opened);
    waitEvents.Add(&opened);
}

void PartyGate::Leave() {
    joined = nullptr;
    released = ended.load();
}

bool PartyGate::Pass(Event* stopEvent) {
    while (!IsOpen()) {
        waitEvents[0] = stopEvent;
        if (WaitOnEvents(waitEvents, -1) == 0)
            return false;
        opened.Reset();
    }
    return true;
}

void PartyGate::CountEndedRead(CountingSemaphore const* endReadSemaphore) {
    if (endReadSemaphore == joined)
        ended.fetch_add(1, std::memory_order_relaxed);
}

void PartyGate::Release() {
    released.fetch_add(1, std::memory_order_release);
    opened.Signal();
}

} // namespace QMT
