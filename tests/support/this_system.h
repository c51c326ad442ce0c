// What tests do to the system, and what they learn from it behind the library's back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace QMT {

// Sets a variable of the environment, or removes it with null.
void SetVariable(char const* name, char const* value);

// The name under which the system shows the calling thread; empty when it shows none.
std::string ShownThreadName();

// Gathers what goes to the developer's debug output from any thread, one at a time in the process.
class DebugOutput {
public:
    DebugOutput();
    ~DebugOutput();
    DebugOutput(DebugOutput&&) = delete;

    // As UTF-8, with a line feed behind each line.
    std::string Take();
};

// The system's zones: what "TZ" takes, by the zone's facts, so that each zone comes once.
std::map<std::string, std::string> SystemZones();

// What this system calls a zone that others call "Europe/Istanbul"; empty when it has no such zone.
std::string SystemNameOf(std::string const& zone);

// Local time minus UTC, in seconds, in the zone that "TZ" names, by the system's facts.
std::int64_t SystemOffset(std::int64_t utcSeconds);

} // namespace QMT
