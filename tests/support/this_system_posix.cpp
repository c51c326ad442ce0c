#include "support/this_system.h"

#include <cstdlib>
#include <ctime>
#include <fstream>

#include <gtest/gtest.h>

#include "support/file_content.h"

namespace QMT {

void SetVariable(char const* name, char const* value) {
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
    tzset();
}

std::string ShownThreadName() {
    std::string name;
    std::getline(std::ifstream("/proc/thread-self/comm"), name);
    return name;
}

DebugOutput::DebugOutput() {
    testing::internal::CaptureStderr();
}

DebugOutput::~DebugOutput() = default;

std::string DebugOutput::Take() {
    return testing::internal::GetCapturedStderr();
}

std::map<std::string, std::string> SystemZones() {
    char const* const given = std::getenv("TZDIR");
    std::filesystem::path const root = given ? given : "/usr/share/zoneinfo";
    std::map<std::string, std::string> names;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(root)) {
        std::string const data = entry.is_regular_file() ? ContentOf(entry.path()) : "";
        if (data.starts_with("TZif"))
            names.emplace(data, entry.path().lexically_relative(root).string());
    }
    return names;
}

std::string SystemNameOf(std::string const& zone) {
    return zone;
}

std::int64_t SystemOffset(std::int64_t utcSeconds) {
    std::time_t const count = utcSeconds;
    std::tm fields{};
    return localtime_r(&count, &fields)->tm_gmtoff;
}

} // namespace QMT
