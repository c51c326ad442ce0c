// The queue of messages that each thread has, and posting to it. Where the system has queues of messages,
// what is posted here goes through them.
#pragma once

#include <cstdint>
#include <memory>

#include "qmt/export.h"

// One message as it comes out of a queue: the MSG of <windows.h> where there is that.
struct tagMSG; // NOLINT(readability-identifier-naming): the name is fixed

namespace QMT {

// What is posted. Handling a message calls its handler, unless that is null, on the thread it was posted to.
struct QueueMessage {
    void (*handler)(QueueMessage const& message) = nullptr;
    unsigned int number = 0;
    std::uintptr_t firstValue = 0;
    std::intptr_t secondValue = 0;
};

class MessageList;

// A thread's queue, to post to.
//
// The thread that is to be posted to takes its queue with OfThisThread and gives it to others, who may keep
// it for as long as they like. The messages are handled while that thread calls
// CheckQueueDuringLengthyOperation (qmt/helpers/system.h). Where the system has queues a post wakes the
// thread from waiting for a message; its own loops pass over what was posted here.
//
// Guaranteed: messages of one posting thread are handled in order, each once; the handler sees all that was
// done before the post. What is left when the thread ends is dropped.
//
//     ThreadQueue const queue = ThreadQueue::OfThisThread();
//     std::thread([queue] { queue.Post({OnProgress, 50}); }).detach();
class QMT_UTILU_API ThreadQueue {
public:
    static ThreadQueue OfThisThread();

    // Never waits for the message to be handled. Allocates. False when the thread has ended.
    bool Post(QueueMessage const& message) const;

private:
    explicit ThreadQueue(std::weak_ptr<MessageList> threadList);

    std::weak_ptr<MessageList> list;
};

// What was posted, for a filter of CheckQueueDuringLengthyOperation; an empty one for a message of the
// system.
QMT_UTILU_API QueueMessage const& GetQueueMessage(tagMSG const& message);

} // namespace QMT
