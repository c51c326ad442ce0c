#include "qmt/general/threads.h"

#include <cassert>
#include <chrono>
#include <thread>
#include <utility>

#include "general/sync_point.h"
#include "general/system_error_text.h"
#include "platform/threads.h"

namespace QMT {

struct Thread::Imp {
    Imp(char const* threadName, Event* endedEvent, bool joinsThread)
        : name(threadName), ended(endedEvent), joins(joinsThread) {}

    char const* name;
    Event* ended;
    bool joins;
    bool selfDeletes = false;
    bool isStarted = false;
    void (*startFunction)() = nullptr;
    platform::ThreadMain main{};
    platform::ThreadHandle joined = 0;
};

void MS_Sleep(unsigned int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

Thread::Thread(char const* name, Event* ended, bool joins) : imp(new Imp(name, ended, joins)) {}

Thread::~Thread() {
    if (imp->joined != 0)
        platform::JoinThread(imp->joined);
}

void Thread::RegisterSelfDeletes() {
    imp->selfDeletes = true;
}

void Thread::SetThreadStartFunc(void (*function)()) {
    imp->startFunction = function;
}

ErrorInfo* Thread::StartRunning() {
    assert(!(imp->joins && imp->selfDeletes));
    String message = u"Cannot start the thread \"";
    message << DecodeFromUTF8(imp->name == nullptr ? "" : imp->name, false) << u"\".";
    if (QMT_FAULT_POINT("Thread::StartRunning"))
        return MakeError(std::move(message));
    if (std::exchange(imp->isStarted, true))
        return MakeError(std::move(message), u" It has been started before.");
    // Once the thread exists a self-deleting object may be gone, so nothing of it is touched any more.
    platform::ThreadHandle* const handle = imp->joins ? &imp->joined : nullptr;
    imp->main = {[](void* thread) { static_cast<Thread*>(thread)->Run(); }, this};
    if (platform::SystemError const error = platform::StartThread(imp->main, handle)) {
        imp->isStarted = false;
        return MakeError(std::move(message), SystemErrorText(error));
    }
    return nullptr;
}

void Thread::Run() {
    platform::NameCurrentThread(imp->name);
    if (imp->startFunction != nullptr)
        imp->startFunction();
    OnStop(RunCycles());
    Event* const ended = imp->ended;
    if (imp->selfDeletes)
        delete this;
    if (ended != nullptr)
        ended->Signal();
}

ErrorInfo* Thread::RunCycles() {
    try {
        for (bool finished = false; !finished;)
            if (ErrorInfo* const error = RunCycle(finished))
                return error;
    } catch (ErrorInfo* error) {
        return error;
    }
    return nullptr;
}

void Thread::OnStop(ErrorInfo* error) {
    std::unique_ptr<ErrorInfo> const owned(error);
    if (owned)
        LogToIDE(*owned);
}

} // namespace QMT
