#include <cassert>
#include <utility>

#include "chain/link_task.h"
#include "qmt/chain/chain_links.h"
#include "qmt/general/threads.h"

namespace QMT {

namespace {

// The semaphore of the shared ring. Of each end of a read it also tells the party that has made it.
class EndReadSemaphore final : public CountingSemaphore {
public:
    EndReadSemaphore() : CountingSemaphore(nullptr, 0) {}

    void Signal() override {
        if (PartyGate* const gate = TaskContext::OfThisThread().gate)
            gate->CountEndedRead(this);
        CountingSemaphore::Signal();
    }
};

} // namespace

// The parties of a stage and what a cycle waits on.
struct ParallelCycle {
    ParallelCycle() {
        PrepareWait(waitForReads, endReadSemaphore);
        PrepareWait(waitForWrites, endWriteSemaphore);
    }

    bool HasParties() const { return links.Size() > 0; }

    ChainLink* PartyAt(std::size_t index) const { return index < links.Size() ? links[index] : nullptr; }

    void AddParty(ChainLink* link, LinkTask* task, RotatingFixedBuffers& sharedInput);
    void RemoveParties();

    // Waits until every party has ended its read and its write; false when a stop is under way, or the cycle
    // runs on a thread that no stop reaches, and a party can no longer do so.
    bool WaitForParties();

    // Re-arms both countdowns, frees the shared slot, and lets the parties go on.
    void EndSharedRead(RotatingFixedBuffers& sharedInput);

    template <typename Action>
    void ForEachLink(Action action) const {
        for (std::size_t i = 0; i < links.Size(); ++i)
            action(*links[i]);
    }

private:
    using Events = SVArray<Event*, Event*>;

    void PrepareWait(Events& events, CountingSemaphore& semaphore);
    bool WaitFor(Events& events, CountingSemaphore& semaphore);
    bool AnyPartyWillDoItsShare() const;

    SVArray<ChainLink*, ChainLink*> links;
    SVArray<LinkTask*, LinkTask*> parties; // the task of each of the links
    EndReadSemaphore endReadSemaphore;
    CountingSemaphore endWriteSemaphore{nullptr, 0};
    Event noStop{true}; // stands for the stop event on a thread that has none

    // The semaphore, then the stop event of the thread that runs the cycle: a cycle that can be finished is.
    Events waitForReads;
    Events waitForWrites;
};

void ParallelCycle::PrepareWait(Events& events, CountingSemaphore& semaphore) {
    events.Add(&semaphore);
    events.Add(&noStop);
}

void ParallelCycle::AddParty(ChainLink* link, LinkTask* task, RotatingFixedBuffers& sharedInput) {
    assert(dynamic_cast<ParallelLinkArray*>(link) == nullptr &&
           "an array cannot be a parallel link of another one: their shared ring has one semaphore");
    links.Add(link);
    parties.Add(task);
    task->Gate().Join(&endReadSemaphore);
    sharedInput.SetEndReadNotifyRequired(&endReadSemaphore);
    link->GetBuffers().SetEndWriteNotifyRequired(&endWriteSemaphore);
    auto const count = static_cast<int>(links.Size());
    endReadSemaphore.SetCountdownMode(count);
    endWriteSemaphore.SetCountdownMode(count);
}

void ParallelCycle::RemoveParties() {
    for (std::size_t i = 0; i < parties.Size(); ++i)
        parties[i]->Gate().Leave();
    links.RemoveAll();
    parties.RemoveAll();
    endReadSemaphore.ForceReset();
    endWriteSemaphore.ForceReset();
}

bool ParallelCycle::WaitForParties() {
    return WaitFor(waitForReads, endReadSemaphore) && WaitFor(waitForWrites, endWriteSemaphore);
}

bool ParallelCycle::WaitFor(Events& events, CountingSemaphore& semaphore) {
    constexpr std::size_t stopPlace = 1;
    constexpr unsigned int millisecondsBetweenLooks = 1;
    constexpr int millisecondsWithoutStop = 20;
    Event* const stopEvent = TaskContext::OfThisThread().stopEvent;
    events[stopPlace] = stopEvent == nullptr ? &noStop : stopEvent;
    int const limit = stopEvent == nullptr ? millisecondsWithoutStop : -1;
    while (WaitOnEvents(events, limit) != 0) {
        if (!AnyPartyWillDoItsShare())
            return EventSignalled(semaphore);
        if (stopEvent != nullptr)
            MS_Sleep(millisecondsBetweenLooks);
    }
    return true;
}

bool ParallelCycle::AnyPartyWillDoItsShare() const {
    for (std::size_t i = 0; i < parties.Size(); ++i)
        if (parties[i]->WillDoItsShare())
            return true;
    return false;
}

void ParallelCycle::EndSharedRead(RotatingFixedBuffers& sharedInput) {
    endReadSemaphore.Reset();
    endWriteSemaphore.Reset();
    sharedInput.ForceEndRead();
    for (std::size_t i = 0; i < parties.Size(); ++i)
        std::as_const(parties)[i]->Gate().Release();
}

ParallelLinkArray::ParallelLinkArray() : cycle(new ParallelCycle) {}

ParallelLinkArray::~ParallelLinkArray() = default;

void ParallelLinkArray::AddParty(ChainLink* link, LinkTask& task) {
    link->SetPreceedingLink(GetPrevChainLink());
    cycle->AddParty(link, &task, GetPrevChainLink()->GetBuffers());
}

ChainLink* ParallelLinkArray::PartyAt(std::size_t index) const {
    return cycle->PartyAt(index);
}

void ParallelLinkArray::RemoveParallelLinks() {
    cycle->RemoveParties();
}

void ParallelLinkArray::ParallelProcess() {
    RotatingFixedBuffers& input = GetPrevChainLink()->GetBuffers();
    RotatingFixedBuffers& output = GetOwnBuffers();
    if (!input.TestSharedRead() || output.BeginWrite() == nullptr)
        return;
    bool const hasParties = cycle->HasParties();
    if (hasParties && !cycle->WaitForParties())
        return;
    AfterParallelLinks();
    if (hasParties)
        cycle->EndSharedRead(input);
    BeforeEndWrite();
    output.EndWrite();
}

ParallelPushLinkArray::ParallelPushLinkArray() = default;

ParallelPushLinkArray::~ParallelPushLinkArray() = default;

void ParallelPushLinkArray::AddParallelLink(InternalPushLink* link) {
    AddParty(link, *link->task);
}

void ParallelPushLinkArray::PushProcess() {
    cycle->ForEachLink([](ChainLink& link) { link.PushProcess(); });
    InternalPushLink::PushProcess();
}

void ParallelPushLinkArray::Process() {
    ParallelProcess();
}

RotatingFixedBuffers& ParallelPushLinkArray::GetOwnBuffers() {
    return GetBuffers();
}

ChainLink* ParallelPushLinkArray::GetPrevChainLink() {
    return GetPreceeding();
}

ParallelPullLinkArray::ParallelPullLinkArray() = default;

ParallelPullLinkArray::~ParallelPullLinkArray() = default;

void ParallelPullLinkArray::AddParallelLink(InternalPullLink* link) {
    AddParty(link, *link->task);
}

void ParallelPullLinkArray::PullProcess() {
    cycle->ForEachLink([](ChainLink& link) { link.PullProcess(); });
    InternalPullLink::PullProcess();
}

void ParallelPullLinkArray::Process() {
    ParallelProcess();
}

RotatingFixedBuffers& ParallelPullLinkArray::GetOwnBuffers() {
    return GetBuffers();
}

ChainLink* ParallelPullLinkArray::GetPrevChainLink() {
    return GetPreceeding();
}

} // namespace QMT
