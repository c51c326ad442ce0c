// Posting to a list of the thread's.
#include "qmt/platform/message_queue.h"

#include <utility>

#include "platform/message_list.h"

namespace QMT {

namespace {

thread_local bool listHasEnded = false;

struct ListOwner {
    ~ListOwner() { listHasEnded = true; }

    std::shared_ptr<MessageList> list = std::make_shared<MessageList>();
};

} // namespace

void MessageList::Add(QueueMessage const& message) {
    {
        std::scoped_lock const lock(mutex);
        messages.push_back(message);
    }
    platform::MarkPost(systemQueue);
}

bool MessageList::Take(QueueMessage& message) {
    std::scoped_lock const lock(mutex);
    if (messages.empty())
        return false;
    message = messages.front();
    messages.pop_front();
    return true;
}

std::shared_ptr<MessageList> ListOfThisThread() {
    if (listHasEnded)
        return nullptr;
    thread_local ListOwner const owner;
    return owner.list;
}

ThreadQueue::ThreadQueue(std::weak_ptr<MessageList> threadList) : list(std::move(threadList)) {}

ThreadQueue ThreadQueue::OfThisThread() {
    return ThreadQueue(ListOfThisThread());
}

bool ThreadQueue::Post(QueueMessage const& message) const {
    std::shared_ptr<MessageList> const open = list.lock();
    if (open)
        open->Add(message);
    return open != nullptr;
}

} // namespace QMT
