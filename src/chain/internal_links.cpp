#include "chain/link_task.h"
#include "chain/stop_scope.h"
#include "chain/upstream_pulls.h"
#include "qmt/chain/chain_links.h"

namespace QMT {

InternalPushLink::InternalPushLink()
    : task(new LinkTask("PushLink Semaphore", u"InternalPushLink", &DoPushProcessing, this)) {}

InternalPushLink::~InternalPushLink() = default;

void InternalPushLink::CoupleToPredecessor() {
    coupled = true;
}

void InternalPushLink::PushProcess() {
    if (coupled)
        asLink->ProcessAndPush();
    else
        task->Notify();
}

void InternalPushLink::DoPushProcessing(void* link, Event* stopEvent) {
    auto* const self = static_cast<InternalPushLink*>(link);
    self->task->Run(stopEvent, [self] { self->ProcessAndPush(); });
}

void InternalPushLink::StopLinkedProcessing() {
    StopScope const scope(task.get());
    StopPushTask();
    if (following != nullptr && !scope.HasComeBack())
        following->StopLinkedProcessing();
}

bool InternalPushLink::StopPushTask() {
    return !coupled && task->Stop();
}

InternalPullLink::InternalPullLink()
    : upstream(new UpstreamPulls),
      task(new LinkTask("PullLink Semaphore", u"InternalPullLink", &DoPullProcessing, this)) {}

InternalPullLink::~InternalPullLink() = default;

void InternalPullLink::PullProcess() {
    task->Notify();
}

void InternalPullLink::PullAndProcess() {
    if (preceeding != nullptr)
        upstream->Pull([this] { preceeding->PullProcess(); });
    DoProcess();
}

void InternalPullLink::DoPullProcessing(void* link, Event* stopEvent) {
    auto* const self = static_cast<InternalPullLink*>(link);
    self->task->Run(stopEvent, [self] { self->PullAndProcess(); });
}

void InternalPullLink::StopLinkedProcessing() {
    StopScope const scope(task.get());
    UpstreamPulls::Closing const closing(*upstream);
    if (preceeding != nullptr && !scope.HasComeBack())
        preceeding->StopLinkedProcessing();
    StopPullTask();
}

void InternalPullLink::StopPullTask() {
    task->Stop();
}

CrossoverLink::CrossoverLink() = default;

CrossoverLink::~CrossoverLink() = default;

void CrossoverLink::PullProcess() {
    InternalPushLink::PullProcess(); // counts, and pulls nothing
}

void CrossoverLink::StopLinkedProcessing() {
    StopScope scope(this);
    if (scope.HasComeBack()) {
        if (StopPushTask())
            scope.TellRestart();
        StopPullTask();
        return;
    }
    InternalPushLink::StopLinkedProcessing();
    InternalPullLink::StopLinkedProcessing();
    // Until its turn came, a link in front may have pushed, and set going again what lies behind.
    if (scope.WasRestarted())
        InternalPushLink::StopLinkedProcessing();
}

} // namespace QMT
