// The links of a processing chain.
//
// A chain passes buffers of fixed size from link to link. Each link owns one ring, which holds what the link
// has produced, and takes its input from the ring of its predecessor. Data moves only in `Process`; pushes
// and pulls only say when. All link classes are abstract: an application derives its own and supplies
// `Process`.
//
// To build a chain: construct the links, configure each ring that carries data with
// `GetBuffers().SetProperties(count, size)`, join the links, and hand the thread pool to
// `ChainLink::SetThreadPoolToUse`. To end it: stop the writer and the reader, call `StopLinkedProcessing` at
// the chain's ends, destroy the links, then the pool.
//
// A push carries a count, not the data: each is worth one `Process`. A `Process` that finds its output ring
// full has used up its count, and nobody pushes again when room appears. A writer that gets null from
// `BeginWrite` therefore calls `PushProcess` of the next link, or `Process` drops its input.
#pragma once

#include <memory>

#include "qmt/chain/rotating_buffers.h"
#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/events.h"
#include "qmt/general/string.h"

namespace QMT {

class CountsAccess;
class LinkTask;
class ThreadPool;
class UpstreamPulls;
struct ParallelCycle;

// What every link has: two neighbours and the ring of its output.
//
// The caller keeps a link alive until its chain is stopped; links own neither each other nor unlink
// themselves. Joining, configuring and naming are for a time when the chain does not run: neighbours are
// plain pointers without protection.
class QMT_UTILU_API ChainLink {
public:
    ChainLink(ChainLink const&) = delete;
    ChainLink& operator=(ChainLink const&) = delete;

    // Joins `link` in front of this link, both ways.
    virtual void LinkToPreceeding(ChainLink* link);

    // Joins `link` behind this link, both ways.
    virtual void LinkToFollowing(ChainLink* link);

    // The link before this one; null until it is set.
    virtual ChainLink* GetPreceeding() { return preceeding; }

    // Says that a buffer has been written to the ring of the predecessor. Here it is only counted.
    virtual void PushProcess();

    // Says that the successor wants a buffer in this link's ring. Here it is only counted.
    virtual void PullProcess();

    // Stops this link's processing and passes the stop along the chain, on the caller's thread. Returns when
    // every task on the way has ended; a `Process` under way is finished first. The caller is not one of the
    // chain's own threads and holds nothing that a `Process` needs.
    //
    // A link that the same stop meets again, as behind a crossover, stops its own task and passes the stop no
    // further; so the forwarding ends however the links are joined.
    virtual void StopLinkedProcessing() = 0;

protected:
    virtual ~ChainLink();

public:
    // The link's own work on one buffer: reads the ring of the predecessor, fills the own ring, and ends
    // both. It must find out by itself whether there is input and room.
    virtual void Process() = 0;

    // Makes `link` the predecessor, one way: `link` does not push at this one. For the seam at which a pushed
    // part of a chain meets a pulled one; such a chain is stopped from both ends.
    void SetPreceedingLink(ChainLink* link) { preceeding = link; }

    // The ring of the link's output, also for its configuration.
    RotatingFixedBuffers& GetBuffers() { return buffers; }

    // Free text for diagnosis, given to the ring too.
    void SetTraceName(String name);
    String GetTraceName() const;

    // The pool on whose threads all internal links of the process run. It stays the caller's, must outlive
    // the chains, and is set before the first push or pull reaches an internal link. When it is set anew,
    // links that start from then on take the new one; a start that is under way on another thread may take
    // either.
    static void SetThreadPoolToUse(ThreadPool* pool);

protected:
    ChainLink();

    ChainLink* preceeding = nullptr;
    ChainLink* following = nullptr;

private:
    friend class CountsAccess;
    friend class InternalPushLink;
    friend class InternalPullLink;

    // Runs `Process`, and counts it.
    void DoProcess() {
        buffers.processed.Add();
        Process();
    }

    void ProcessAndPush() {
        ChainLink* const next = following; // here, so that nothing waits for it behind Process
        DoProcess();
        if (next != nullptr)
            next->PushProcess();
    }

    RotatingFixedBuffers buffers;
    String traceName;
};

// The end of a chain at which its user writes.
//
// The user writes on one thread: `BeginWrite`, fill the block, `EndWrite`. `Process` may stay empty.
//
// None of the operations waits or allocates; the first `EndWrite` after a start or stop may start tasks of
// the links behind (see `InternalPushLink`), and coupled links run inside `EndWrite`.
//
//     while (unsigned char** block = writer.BeginWrite()) { Fill(*block); writer.EndWrite(); }
class QMT_UTILU_API ExternalPushLink : public ChainLink {
public:
    ExternalPushLink();
    ~ExternalPushLink() override;

    // As the operations of the same names on the link's own ring.
    bool TestWrite() { return GetBuffers().TestWrite(); }

    unsigned char** BeginWrite() { return GetBuffers().BeginWrite(); }

    unsigned char* ForOverWrite() { return GetBuffers().ForOverWrite(); }

    void WriteReplace(unsigned char* block) { GetBuffers().WriteReplace(block); }

    // Publishes the block, then pushes at the next link, if there is one.
    virtual void EndWrite();

    // Passes the stop to the next link, if there is one.
    void StopLinkedProcessing() override;
};

// The end of a chain at which its user reads the ring of the predecessor, which must be set.
//
// The user reads on one thread: `BeginRead`, use the block, `EndRead`. `Process` may stay empty, and the own
// ring is not used.
//
// `TestRead` and `BeginRead` first pull at the predecessor, which is only told: they do not wait for what it
// does about it, and a reader asks again. None of the operations waits or allocates, but for the first pull
// after a start or stop, which may start tasks of the links in front.
class QMT_UTILU_API ExternalPullLink : public ChainLink {
public:
    ExternalPullLink();
    ~ExternalPullLink() override;

    // Pulls once, then says whether there is a buffer to read.
    bool TestRead() {
        preceeding->PullProcess();
        return preceeding->GetBuffers().TestRead();
    }

    // Pulls once, then gives the slot to read, null when there is none.
    virtual unsigned char** BeginRead();

    // As the operations of the same names on the predecessor's ring; no pull.
    unsigned char* ForPeekRead() { return preceeding->GetBuffers().ForPeekRead(); }

    void EndRead() { preceeding->GetBuffers().EndRead(); }

    // Passes the stop to the predecessor, if there is one.
    void StopLinkedProcessing() override;
};

// A link that is driven from in front: each push is worth one `Process` on a thread of its own, and then a
// push at the next link.
//
// `PushProcess` comes from one thread at a time. Before the first one the link may be coupled: then `Process`
// and the push at the next link run inside `PushProcess`, on the pushing thread, and there is no task. The
// link is stopped before it is destroyed.
//
// The link starts its task at the first push and again at the first push after a stop. A start that fails is
// written to the error log and not tried again before a stop. Once the task runs, a push neither waits nor
// allocates and enters the system only to wake the task; `Process` sees everything that was done before the
// push. `Process` runs on one thread at a time. A stop drops the pushes that are not processed yet; the data
// stays in the rings.
class QMT_UTILU_API InternalPushLink : public virtual ChainLink {
public:
    InternalPushLink();
    ~InternalPushLink() override;

    // From now on `Process` runs on the pushing thread. There is no way back. Before the first push only.
    void CoupleToPredecessor();

    void PushProcess() override;

    // Stops the own task, then passes the stop to the next link.
    void StopLinkedProcessing() override;

    // The task: `link` is the `InternalPushLink`.
    static void DoPushProcessing(void* link, Event* stopEvent);

private:
    friend class CountsAccess;
    friend class CrossoverLink;
    friend class ParallelPushLinkArray;

    bool StopPushTask();

    ChainLink* const asLink = this; // or each push would have to look the virtual base up
    bool coupled = false;
    std::unique_ptr<LinkTask> task;
};

// A link that is driven from behind: each pull is worth one pull at the predecessor and one `Process`, in
// this order, on a thread of its own. What the predecessor does about the pull is not waited for.
//
// `PullProcess` may come from several threads at once. For start, stop and failures see `InternalPushLink`; a
// pull link cannot be coupled.
class QMT_UTILU_API InternalPullLink : public virtual ChainLink {
public:
    InternalPullLink();
    ~InternalPullLink() override;

    void PullProcess() override;

    // Passes the stop to the predecessor, and then stops the own task. From its beginning on the task pulls
    // no more at the predecessor, which therefore stays stopped.
    void StopLinkedProcessing() override;

    // The task: `link` is the `InternalPullLink`.
    static void DoPullProcessing(void* link, Event* stopEvent);

private:
    friend class CountsAccess;
    friend class CrossoverLink;
    friend class ParallelPullLinkArray;

    void PullAndProcess();
    void StopPullTask();

    std::unique_ptr<UpstreamPulls> upstream;
    std::unique_ptr<LinkTask> task;
};

// The place where a chain changes its drive: pushed from in front, and a pull from behind ends here. Whoever
// pulls finds in the link's ring what the pushes have produced.
class QMT_UTILU_API CrossoverLink : public virtual InternalPushLink, public virtual InternalPullLink {
public:
    CrossoverLink();
    ~CrossoverLink() override;

    // Only counts.
    void PullProcess() override;

    // Stops the own tasks and passes the stop both ways.
    void StopLinkedProcessing() override;
};

// One stage of a chain made of several links that work on the same input at the same time.
//
// Join the array to its predecessor first, then add the parallel links; these are not joined otherwise. All
// of them read the same slot of the predecessor's ring, and each writes a ring of its own. `Process` of a
// parallel link must, for every buffer that it finds, end one read of the shared ring and one write of its
// own; one that finds no buffer returns. Stop the array before its links, each of which is stopped by a call
// of its own.
//
// Every parallel link sees every buffer exactly once and in order: one that is ahead waits until the slot has
// been freed. A coupled parallel link does not wait, so the array must then be coupled as well, or have one
// buffer in flight only. An array cannot be a parallel link of another one.
//
// A cycle allocates nothing. A stop lets a cycle finish, unless a link can no longer do its share: then the
// cycle is given up, and the slot stays. A coupled array gives up likewise, since no stop reaches the
// writer's thread.
class QMT_UTILU_API ParallelLinkArray {
public:
    virtual ~ParallelLinkArray();
    ParallelLinkArray(ParallelLinkArray const&) = delete;
    ParallelLinkArray& operator=(ParallelLinkArray const&) = delete;

protected:
    // The ring that the array's result goes to.
    virtual RotatingFixedBuffers& GetOwnBuffers() = 0;

    // The link whose ring is the shared input.
    virtual ChainLink* GetPrevChainLink() = 0;

public:
    // The first step of the application in a cycle, on the array's thread: all parallel links are done with
    // the buffer and their results can be read without a lock; the input slot is still held.
    virtual void AfterParallelLinks() = 0;

    // The second step: the input slot is free again, and the array's own write is about to end.
    virtual void BeforeEndWrite() = 0;

    // Forgets the parallel links, which must still be alive. They are neither stopped nor destroyed, and the
    // end-of-read and end-of-write semaphores stay set on the rings concerned. For a time when the array does
    // not run.
    void RemoveParallelLinks();

protected:
    ParallelLinkArray();

    // One cycle. Without input, or without room for the result, it does nothing.
    void ParallelProcess();

private:
    friend class CountsAccess;
    friend class ParallelPushLinkArray;
    friend class ParallelPullLinkArray;

    ChainLink* PartyAt(std::size_t index) const; // null behind the last

    void AddParty(ChainLink* link, LinkTask& task);

    std::unique_ptr<ParallelCycle> cycle;
};

// A parallel stage that is driven from in front.
class QMT_UTILU_API ParallelPushLinkArray : public InternalPushLink, public ParallelLinkArray {
public:
    ~ParallelPushLinkArray() override;

    // Adds `link`, which stays the caller's, to the stage. The array must have a predecessor. For a time when
    // the array does not run.
    void AddParallelLink(InternalPushLink* link);

    // Pushes at each parallel link in order, then at the array itself.
    void PushProcess() override;

    // One cycle.
    void Process() override;

protected:
    ParallelPushLinkArray();
    RotatingFixedBuffers& GetOwnBuffers() override;
    ChainLink* GetPrevChainLink() override;
};

// A parallel stage that is driven from behind. The predecessor gets one pull from each parallel link and one
// from the array.
class QMT_UTILU_API ParallelPullLinkArray : public InternalPullLink, public ParallelLinkArray {
public:
    ~ParallelPullLinkArray() override;

    // Adds `link`, which stays the caller's, to the stage. The array must have a predecessor. For a time when
    // the array does not run.
    void AddParallelLink(InternalPullLink* link);

    // Pulls at each parallel link in order, then at the array itself.
    void PullProcess() override;

    // One cycle.
    void Process() override;

protected:
    ParallelPullLinkArray();
    RotatingFixedBuffers& GetOwnBuffers() override;
    ChainLink* GetPrevChainLink() override;
};

} // namespace QMT
