#include "qmt/chain/chain_links.h"

#include <atomic>
#include <utility>

#include "chain/link_task.h"

namespace QMT {

namespace {

// Links may start on any thread while it is set anew.
constinit std::atomic<ThreadPool*> threadPoolToUse{nullptr};

} // namespace

ChainLink::ChainLink() = default;

ChainLink::~ChainLink() = default;

void ChainLink::LinkToPreceeding(ChainLink* link) {
    preceeding = link;
    link->following = this;
}

void ChainLink::LinkToFollowing(ChainLink* link) {
    following = link;
    link->preceeding = this;
}

// Whoever pushes here has written to the ring of the predecessor.
void ChainLink::PushProcess() {
    if (preceeding != nullptr)
        preceeding->buffers.pushes.Add();
}

// Whoever pulls here reads the ring, and does so alone unless it is shared.
void ChainLink::PullProcess() {
    if (buffers.endReadNotify == nullptr)
        buffers.pulls.Add();
}

void ChainLink::SetTraceName(String name) {
    buffers.SetTraceName(name);
    traceName = std::move(name);
}

String ChainLink::GetTraceName() const {
    return traceName;
}

void ChainLink::SetThreadPoolToUse(ThreadPool* pool) {
    threadPoolToUse.store(pool, std::memory_order_release);
}

ThreadPool* ThreadPoolOfLinks() {
    return threadPoolToUse.load(std::memory_order_acquire);
}

ExternalPushLink::ExternalPushLink() = default;

ExternalPushLink::~ExternalPushLink() = default;

void ExternalPushLink::EndWrite() {
    GetBuffers().EndWrite();
    if (following != nullptr)
        following->PushProcess();
}

void ExternalPushLink::StopLinkedProcessing() {
    if (following != nullptr)
        following->StopLinkedProcessing();
}

ExternalPullLink::ExternalPullLink() = default;

ExternalPullLink::~ExternalPullLink() = default;

unsigned char** ExternalPullLink::BeginRead() {
    preceeding->PullProcess();
    return preceeding->GetBuffers().BeginRead();
}

void ExternalPullLink::StopLinkedProcessing() {
    if (preceeding != nullptr)
        preceeding->StopLinkedProcessing();
}

} // namespace QMT
