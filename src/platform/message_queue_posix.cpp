// This system has no queues of messages: each thread that asks for one gets a list.
#include "platform/message_queue.h"

#include <deque>
#include <mutex>
#include <utility>

#include "qmt/platform/message_queue.h"

struct tagMSG { // NOLINT(readability-identifier-naming): the name is fixed
    QMT::QueueMessage posted;
};

namespace QMT {

class MessageList {
public:
    void Add(QueueMessage const& message) {
        std::scoped_lock const lock(mutex);
        messages.push_back(message);
    }

    bool Take(QueueMessage& message) {
        std::scoped_lock const lock(mutex);
        if (messages.empty()) {
            return false;
        }
        message = messages.front();
        messages.pop_front();
        return true;
    }

private:
    std::mutex mutex;
    std::deque<QueueMessage> messages;
};

namespace {

// What is still destroyed behind a thread's list, such as static objects, finds none.
thread_local bool listHasEnded = false;

struct ListOwner {
    ~ListOwner() { listHasEnded = true; }

    std::shared_ptr<MessageList> list = std::make_shared<MessageList>();
};

std::shared_ptr<MessageList> ListOfThisThread() {
    if (listHasEnded) {
        return nullptr;
    }
    thread_local ListOwner const owner;
    return owner.list;
}

} // namespace

ThreadQueue::ThreadQueue(std::weak_ptr<MessageList> threadList) : list(std::move(threadList)) {}

ThreadQueue ThreadQueue::OfThisThread() {
    return ThreadQueue(ListOfThisThread());
}

bool ThreadQueue::Post(QueueMessage const& message) const {
    std::shared_ptr<MessageList> const open = list.lock();
    if (open) {
        open->Add(message);
    }
    return open != nullptr;
}

QueueMessage const& GetQueueMessage(tagMSG const& message) {
    return message.posted;
}

void platform::EmptyMessageQueue(int (*filter)(tagMSG*)) {
    std::shared_ptr<MessageList> const list = ListOfThisThread();
    for (tagMSG message; list && list->Take(message.posted);) {
        bool const isTaken = filter && filter(&message) != 0;
        if (!isTaken && message.posted.handler) {
            message.posted.handler(message.posted);
        }
    }
}

} // namespace QMT
