// The list behind a ThreadQueue, and what the two sides of message_queue.h do differently with it.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

#include "qmt/platform/message_queue.h"

namespace QMT {

namespace platform {

// The number by which the system knows the calling thread's own queue of messages. POSIX: there is none, 0.
std::uint32_t SystemQueueOfThisThread();

// Puts a mark of a post into that queue, which may refuse it, and wakes the thread. POSIX: does nothing.
void MarkPost(std::uint32_t systemQueue);

} // namespace platform

// Any thread may add; the one that has made the list takes.
class MessageList {
public:
    void Add(QueueMessage const& message);

    // False when there is none.
    bool Take(QueueMessage& message);

private:
    std::uint32_t const systemQueue = platform::SystemQueueOfThisThread();
    std::mutex mutex;
    std::deque<QueueMessage> messages;
};

// Null when the thread has ended so far that its list has, too: for static objects that are still destroyed.
std::shared_ptr<MessageList> ListOfThisThread();

} // namespace QMT
