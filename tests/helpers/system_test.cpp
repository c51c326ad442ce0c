#include "qmt/helpers/system.h"

#include <climits>

#include "helpers/code_page_text.h"
#include "helpers/system_clock.h"
#include "qmt/platform/message_queue.h"

namespace QMT {
namespace {

using namespace std::string_literals;

TEST(SystemErrors, AreCodeAndText) {
    EXPECT_EQ(GetSystemErrMsge(0xDEADBEEF), u" Error code = DEADBEEF. ");
}

std::vector<int> handled;

// Notes the values, and posts the message again while its number counts down.
void Handle(QueueMessage const& message) {
    handled.push_back(static_cast<int>(message.firstValue) + static_cast<int>(message.secondValue));
    if (message.number > 0)
        ThreadQueue::OfThisThread().Post({Handle, message.number - 1, 7, 0});
}

TEST(MessageQueue, HandlesWhatTheFilterLeavesInOrder) {
    auto const noMessage = [](tagMSG*) -> int { std::abort(); };
    CheckQueueDuringLengthyOperation(noMessage);
    auto queue = std::make_unique<ThreadQueue const>(ThreadQueue::OfThisThread());
    std::thread([&] {
        CheckQueueDuringLengthyOperation(noMessage); // the thread has a queue of its own
        for (unsigned int value = 1; value <= 4; ++value)
            EXPECT_TRUE(queue->Post({Handle, 0, value, -100}));
        queue->Post({nullptr, 2}), queue->Post({Handle, 2}); // what comes meanwhile is handled, too
    }).join();
    CheckQueueDuringLengthyOperation(
        [](tagMSG* message) { return GetQueueMessage(*message).firstValue == 2 ? -1 : 0; });
    EXPECT_EQ(handled, (std::vector{-99, -97, -96, 0, 7, 7}));
    queue->Post({Handle});
    CheckQueueDuringLengthyOperation([](tagMSG*) { return 1; });
    CheckQueueDuringLengthyOperation(nullptr);
    EXPECT_EQ(handled.size(), 6U);
    std::thread([&] { queue = std::make_unique<ThreadQueue const>(ThreadQueue::OfThisThread()); }).join();
    EXPECT_FALSE(queue->Post({Handle}));
}

TEST(CodePages, KnowTheUsualOnes) {
    auto const check = [](unsigned int codePage, char16_t const* text, char const* bytes) {
        EXPECT_EQ(Bytes(text, codePage), bytes + std::to_string(std::string(bytes).size() + 1)) << codePage;
        EXPECT_EQ(Text(bytes, codePage), String(text) << String(text).Len() + 1) << codePage;
    };
    check(65001, u"\u00E4\u20AC\U0001F600", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    for (unsigned int i = 0; i < 9; ++i)
        check(1250 + i, (u"\u0158\u0416\u20AC\u03A9\u011E\u05D0\u0628\u0104\u0110"s).substr(i, 1).c_str(),
              "\xD8\xC6\x80\xD9\xD0\xE0\xC8\xC0\xD0"s.substr(i, 1).c_str());
    check(437, u"\u00E9\u2592", "\x82\xB1");
    check(850, u"\u00D8", "\x9D");
    check(932, u"\u65E5\u672C\uFF71", "\x93\xFA\x96\x7B\xB1");
    check(936, u"\u4E2D", "\xD6\xD0");
    check(28605, u"\u20AC", "\xA4");
    check(20127, u"", "");
    std::u16string const longText(100'000, u'\u20AC');
    check(65001, longText.c_str(), Bytes(longText.c_str(), 65001).substr(0, 300'000).c_str());
    EXPECT_EQ(Bytes(u"text", 4711) + Bytes(nullptr, 65001), "null0null0");
    EXPECT_EQ(Text("text", 4711) + Text(nullptr, 65001), u"null0null0");
    EXPECT_TRUE(!ConvertToMultibyte(String(u"a"), 4711, nullptr) &&
                !ConvertFromMultibyte(nullptr, 1252, nullptr));
}

TEST(CodePages, ReplaceWhatHasNoCounterpart) {
    EXPECT_EQ(Bytes(u"a\u0416b\U0001F600", 1252), "a?b??6");
    EXPECT_EQ(Bytes(u"\xDC00_\xD800_\xD800", 65001), "?_?_?6");
    EXPECT_EQ(Bytes(u"\u65E5\u00E4", 932), "\x93\xFA?4");
    EXPECT_EQ(Text("a\xFF\xC3(\xE2\x82", 65001), u"a\uFFFD\uFFFD(\uFFFD\uFFFD7");
    EXPECT_EQ(Text("\x81 \x93", 932), u"\uFFFD \uFFFD4");
}

TEST(MillisecondClock, LosesOneAtEachWrap) {
    constexpr std::int64_t ticks = ticksPerSecond / 1000;
    EXPECT_TRUE(MillisecondsOf(ticks - 1) == 0 && MillisecondsOf(ticks * 4294967295) == UINT_MAX);
    EXPECT_EQ(MillisecondsOf(ticks * 4294967296), UINT_MAX);
    EXPECT_EQ(MillisecondsOf(ticks * (5 * 4294967296 + 100)), 95U);
}

TEST(MillisecondClock, StartsOnceAndEndsSleeps) {
    EXPECT_EQ(GetMillisecsCount(), 0U);
    int calls = 0;
    auto const stopAtThird = [](void* count) { return ++*static_cast<int*>(count) == 3; };
    EXPECT_TRUE(!Interruptable_MS_Sleep(0, &calls, stopAtThird) && calls == 1);
    EXPECT_TRUE(Interruptable_MS_Sleep(100'000, &calls, stopAtThird) && calls == 3);
    EXPECT_TRUE(StartMillisecsCount());
    EXPECT_GE(GetMillisecsCount(), 60U); // the first sleep has started it
}

} // namespace
} // namespace QMT
