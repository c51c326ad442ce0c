// This system has no queues of messages: the lists alone hold them.
#include "platform/message_queue.h"

#include "platform/message_list.h"

struct tagMSG { // NOLINT(readability-identifier-naming): the name is fixed
    QMT::QueueMessage posted;
};

namespace QMT {

QueueMessage const& GetQueueMessage(tagMSG const& message) {
    return message.posted;
}

namespace platform {

std::uint32_t SystemQueueOfThisThread() {
    return 0;
}

void MarkPost(std::uint32_t) {}

void EmptyMessageQueue(int (*filter)(tagMSG*)) {
    std::shared_ptr<MessageList> const list = ListOfThisThread();
    for (tagMSG message; list && list->Take(message.posted);) {
        bool const isTaken = filter && filter(&message) != 0;
        if (!isTaken && message.posted.handler)
            message.posted.handler(message.posted);
    }
}

} // namespace platform

} // namespace QMT
