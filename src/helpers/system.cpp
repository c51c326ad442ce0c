#include "qmt/helpers/system.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <string>
#include <string_view>

#include "general/never_destroyed.h"
#include "general/system_error_text.h"
#include "helpers/system_clock.h"
#include "platform/code_pages.h"
#include "platform/locale.h"
#include "platform/message_queue.h"
#include "platform/security.h"
#include "platform/user.h"
#include "qmt/general/threads.h"

namespace QMT {

// ---- errors, messages, objects

String GetSystemErrMsge() {
    return LastSystemErrorText();
}

String GetSystemErrMsge(unsigned long int code) {
    return SystemErrorText(static_cast<std::uint32_t>(code));
}

void CheckQueueDuringLengthyOperation(int (*filter)(tagMSG*)) {
    platform::EmptyMessageQueue(filter);
}

ErrorInfo* AllowAccessToKernelObject(void* handle) {
    switch (platform::OpenToAllUsers(handle)) {
    case platform::OpenAccess::Done:
        return nullptr;
    case platform::OpenAccess::NoDescriptor:
        return MakeError(u"Couldn't allocate security descriptor");
    case platform::OpenAccess::DescriptorNotMade:
        return MakeError(u"Couldn't initialize security descriptor:", GetSystemErrMsge());
    case platform::OpenAccess::ListNotSet:
        return MakeError(u"Couldn't set security descriptor ACL to nullptr:", GetSystemErrMsge());
    default:
        return MakeError(u"Couldn't reset kernel object security to open access:", GetSystemErrMsge());
    }
}

// ---- code pages

namespace {

void SetLength(unsigned int* length, std::size_t value) {
    if (length) {
        *length = static_cast<unsigned int>(value);
    }
}

// The text with its terminator in memory of its own.
template <class Unit>
Unit* NewText(std::basic_string<Unit> const& text, unsigned int* length) {
    auto* const copy = new Unit[text.size() + 1];
    std::copy_n(text.c_str(), text.size() + 1, copy);
    SetLength(length, text.size() + 1);
    return copy;
}

} // namespace

char* ConvertToMultibyte(CodeUnit const* text, unsigned int codePage, unsigned int* length) {
    std::string bytes;
    if (text && platform::ToCodePage(codePage, text, bytes)) {
        return NewText(bytes, length);
    }
    SetLength(length, 0);
    return nullptr;
}

CodeUnit* ConvertFromMultibyte(char const* text, unsigned int codePage, unsigned int* length) {
    std::basic_string<CodeUnit> units;
    if (text && platform::FromCodePage(codePage, text, units)) {
        return NewText(units, length);
    }
    SetLength(length, 0);
    return nullptr;
}

// ---- the clock

namespace {

constexpr unsigned int sleepStep = 20; // milliseconds

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, ticksPerSecond>>;

constexpr std::int64_t notStarted = std::numeric_limits<std::int64_t>::min();

// The counter's reading at the start.
std::atomic<std::int64_t> clockStart{notStarted};

std::int64_t CounterNow() {
    return std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

bool StartMillisecsCount() {
    std::int64_t expected = notStarted;
    clockStart.compare_exchange_strong(expected, CounterNow());
    return true;
}

std::int64_t ElapsedTicks() {
    std::int64_t const start = clockStart.load();
    return start == notStarted ? 0 : CounterNow() - start;
}

unsigned int GetMillisecsCount() {
    return MillisecondsOf(ElapsedTicks());
}

bool Interruptable_MS_Sleep(unsigned int milliseconds, void* context, bool (*stop)(void*)) {
    StartMillisecsCount();
    unsigned int const deadline = GetMillisecsCount() + milliseconds;
    do {
        MS_Sleep(sleepStep);
        if (stop(context)) {
            return true;
        }
    } while (GetMillisecsCount() < deadline);
    return false;
}

// ---- the user

String GetUserNameW() {
    constexpr std::size_t nameRoom = 80; // with the terminator
    String name(platform::UserName());
    return name.Len() < nameRoom ? name : String();
}

void WriteUserName(String) {}

String GetFixedDeviceIdentifier() {
    static NeverDestroyed<String> identifier(GetUserNameW());
    return *identifier;
}

String GetOSCurrency() {
    String const currency(platform::LocaleCurrency());
    return currency.IsEmpty() ? String(u"EUR") : currency;
}

} // namespace QMT
