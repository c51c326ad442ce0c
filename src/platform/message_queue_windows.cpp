// What is posted stands in a list of the thread's; a message to the thread marks its place among those of the
// system, and wakes a thread that waits for any. The mark carries nothing: where the system refuses it, or
// another loop of the application takes it, what it marks is still in the list.
#include "platform/message_queue.h"

#include <deque>
#include <mutex>
#include <utility>

#include <windows.h>

#include "qmt/platform/message_queue.h"

namespace QMT {

class MessageList {
public:
    void Add(QueueMessage const& message) {
        std::scoped_lock const lock(mutex);
        messages.push_back(message);
    }

    bool Take(QueueMessage& message) {
        std::scoped_lock const lock(mutex);
        if (messages.empty())
            return false;
        message = messages.front();
        messages.pop_front();
        return true;
    }

    DWORD Thread() const { return thread; }

private:
    DWORD const thread = ::GetCurrentThreadId();
    std::mutex mutex;
    std::deque<QueueMessage> messages;
};

namespace {

std::shared_ptr<MessageList>& ListOfThisThread() {
    thread_local std::shared_ptr<MessageList> list = std::make_shared<MessageList>();
    return list;
}

UINT NumberOfMark() {
    static UINT const number = ::RegisterWindowMessageW(L"QMT::ThreadQueue");
    return number;
}

bool IsMark(MSG const& message) {
    return !message.hwnd && message.message == NumberOfMark();
}

// The next message, of the system or of the list; then it is a mark that leads to posted.
bool TakeNext(MessageList& list, MSG& message, QueueMessage& posted) {
    bool isSystems = false;
    do {
        isSystems = ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0;
        if (isSystems && !IsMark(message))
            return true;
        if (list.Take(posted)) {
            message = {};
            message.message = NumberOfMark();
            message.lParam = reinterpret_cast<LPARAM>(&posted);
            return true;
        }
    } while (isSystems); // a mark whose message is handled already
    return false;
}

void Handle(MSG const& message) {
    if (IsMark(message)) {
        QueueMessage const& posted = GetQueueMessage(message);
        if (posted.handler)
            posted.handler(posted);
    } else {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
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
        ::PostThreadMessageW(open->Thread(), NumberOfMark(), 0, 0);
    }
    return open != nullptr;
}

QueueMessage const& GetQueueMessage(tagMSG const& message) {
    static constinit QueueMessage const none;
    auto const* const posted = reinterpret_cast<QueueMessage const*>(message.lParam);
    return IsMark(message) && posted ? *posted : none;
}

void platform::EmptyMessageQueue(int (*filter)(tagMSG*)) {
    std::shared_ptr<MessageList> const list = ListOfThisThread();
    QueueMessage posted;
    for (MSG message; TakeNext(*list, message, posted);) {
        HWND const window = message.hwnd;
        bool const isPaint = message.message == WM_PAINT;
        if (!filter || filter(&message) == 0)
            Handle(message);
        else if (isPaint && window) // which the system gives again until the window counts as painted
            ::ValidateRect(window, nullptr);
    }
}

} // namespace QMT
