#include "support/this_system.h"

#include <windows.h>

#include <mutex>

extern "C" WINBASEAPI HRESULT WINAPI GetThreadDescription(HANDLE thread, PWSTR* description);

namespace QMT {

namespace {

std::mutex gatheringMutex;
std::string gathered;
void* gathering = nullptr;

std::string ToUtf8(std::wstring const& text) {
    std::u8string const bytes = std::filesystem::path(text).u8string();
    return {bytes.begin(), bytes.end()};
}

std::wstring FromAnsi(char const* bytes, std::size_t count) {
    std::wstring text(count, L'\0');
    int const size = static_cast<int>(count);
    text.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes, size, text.data(), size)));
    return text;
}

// The system tells a debugger of the output by an exception with the text, its terminator counted, as its
// arguments, in one of two encodings; without a debugger the process itself gets to see it first.
LONG CALLBACK Gather(EXCEPTION_POINTERS* pointers) {
    constexpr DWORD wideOutput = 0x4001000A;
    constexpr DWORD ansiOutput = 0x40010006;
    EXCEPTION_RECORD const& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != wideOutput && record.ExceptionCode != ansiOutput)
        return EXCEPTION_CONTINUE_SEARCH;
    auto const size = static_cast<std::size_t>(record.ExceptionInformation[0] - 1);
    auto const text = record.ExceptionInformation[1];
    std::scoped_lock const lock(gatheringMutex);
    gathered +=
        ToUtf8(record.ExceptionCode == wideOutput ? std::wstring(reinterpret_cast<wchar_t const*>(text), size)
                                                  : FromAnsi(reinterpret_cast<char const*>(text), size));
    return EXCEPTION_CONTINUE_EXECUTION;
}

using Zones = std::map<std::wstring, DYNAMIC_TIME_ZONE_INFORMATION>;

Zones const& AllZones() {
    static Zones const zones = [] {
        Zones found;
        DYNAMIC_TIME_ZONE_INFORMATION zone{};
        for (DWORD i = 0; EnumDynamicTimeZoneInformation(i, &zone) == ERROR_SUCCESS; ++i)
            found.emplace(zone.TimeZoneKeyName, zone);
        return found;
    }();
    return zones;
}

// The facts of a year in the zone that "TZ" names.
TIME_ZONE_INFORMATION const& FactsOf(WORD year) {
    static std::map<std::pair<std::wstring, WORD>, TIME_ZONE_INFORMATION> known;
    wchar_t name[128] = L"";
    GetEnvironmentVariableW(L"TZ", name, 128);
    auto const [place, isNew] = known.try_emplace({name, year});
    if (isNew) {
        auto zone = AllZones().at(name);
        GetTimeZoneInformationForYear(year, &zone, &place->second);
    }
    return place->second;
}

constexpr std::int64_t ticksInSecond = 10'000'000;
constexpr std::int64_t from1601To1970 = 11'644'473'600; // seconds

SYSTEMTIME ToSystemTime(std::int64_t seconds) {
    auto const ticks = static_cast<std::uint64_t>((seconds + from1601To1970) * ticksInSecond);
    FILETIME const time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    return fields;
}

std::int64_t ToSeconds(SYSTEMTIME const& fields) {
    FILETIME time{};
    SystemTimeToFileTime(&fields, &time);
    std::uint64_t const ticks = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    return static_cast<std::int64_t>(ticks) / ticksInSecond - from1601To1970;
}

SYSTEMTIME LocalTimeBy(WORD year, SYSTEMTIME const& utc) {
    SYSTEMTIME local{};
    auto facts = FactsOf(year);
    SystemTimeToTzSpecificLocalTime(&facts, &utc, &local);
    return local;
}

} // namespace

void SetVariable(char const* name, char const* value) {
    SetEnvironmentVariableA(name, value);
    _putenv_s(name, value ? value : "");
}

std::string ShownThreadName() {
    PWSTR description = nullptr;
    if (FAILED(GetThreadDescription(GetCurrentThread(), &description)))
        return "";
    std::string const name = ToUtf8(description);
    LocalFree(description);
    return name;
}

DebugOutput::DebugOutput() {
    gathered.clear();
    gathering = AddVectoredExceptionHandler(1, Gather);
}

DebugOutput::~DebugOutput() {
    RemoveVectoredExceptionHandler(gathering);
}

std::string DebugOutput::Take() {
    std::scoped_lock const lock(gatheringMutex);
    return gathered;
}

std::map<std::string, std::string> SystemZones() {
    std::map<std::string, std::string> names;
    for (auto const& [wideName, zone] : AllZones()) {
        std::string const name = ToUtf8(wideName);
        // In "TZ" a name such as "UTC-02" means two hours east of UTC, for the system a zone to the west.
        if (name.find_first_of("+-") == std::string::npos)
            names.emplace(name, name);
    }
    return names;
}

std::string SystemNameOf(std::string const& zone) {
    static std::map<std::string, std::string> const names = {
        {"America/Cancun", "Eastern Standard Time (Mexico)"}, {"Europe/Istanbul", "Turkey Standard Time"}};
    auto const found = names.find(zone);
    bool const isName = zone.find('/') != std::string::npos && zone.find(',') == std::string::npos;
    return found != names.end() ? found->second : isName ? "" : zone;
}

// By the facts of the year that the wall clock shows.
std::int64_t SystemOffset(std::int64_t utcSeconds) {
    SYSTEMTIME const utc = ToSystemTime(utcSeconds);
    return ToSeconds(LocalTimeBy(LocalTimeBy(utc.wYear, utc).wYear, utc)) - utcSeconds;
}

} // namespace QMT
