// What is posted stands in a list of the thread's; a message to the thread marks its place among those of the
// system, and wakes a thread that waits for any. The mark carries nothing: where the system refuses it, or
// another loop of the application takes it, what it marks is still in the list.
#include "platform/message_queue.h"

#include <windows.h>

#include "platform/message_list.h"

namespace QMT {

namespace {

UINT NumberOfMark() {
    static UINT const number = ::RegisterWindowMessageW(L"QMT::ThreadQueue");
    return number;
}

bool IsMark(MSG const& message) {
    return !message.hwnd && message.message == NumberOfMark();
}

// The next message, of the system or of the list; then it is a mark that leads to posted.
bool TakeNext(MessageList* list, MSG& message, QueueMessage& posted) {
    bool isSystems = false;
    do {
        isSystems = ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0;
        if (isSystems && !IsMark(message))
            return true;
        if (list && list->Take(posted)) {
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

QueueMessage const& GetQueueMessage(tagMSG const& message) {
    static constinit QueueMessage const none;
    auto const* const posted = reinterpret_cast<QueueMessage const*>(message.lParam);
    return IsMark(message) && posted ? *posted : none;
}

namespace platform {

std::uint32_t SystemQueueOfThisThread() {
    return ::GetCurrentThreadId();
}

void MarkPost(std::uint32_t systemQueue) {
    ::PostThreadMessageW(systemQueue, NumberOfMark(), 0, 0);
}

void EmptyMessageQueue(int (*filter)(tagMSG*)) {
    std::shared_ptr<MessageList> const list = ListOfThisThread();
    QueueMessage posted;
    for (MSG message; TakeNext(list.get(), message, posted);) {
        HWND const window = message.hwnd;
        bool const isPaint = message.message == WM_PAINT;
        if (!filter || filter(&message) == 0)
            Handle(message);
        else if (isPaint && window) // which the system gives again until the window counts as painted
            ::ValidateRect(window, nullptr);
    }
}

} // namespace platform

} // namespace QMT
