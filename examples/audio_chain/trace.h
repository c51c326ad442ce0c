// What happened when in a run, for a reader and for a trace viewer.
#pragma once

#include <filesystem>

namespace Audio {

// From here on the chain's traces are kept.
void StartTrace();

// Writes them to `name` with the endings .txt and .json. False when that fails, which is reported.
bool WriteTrace(std::filesystem::path const& name);

} // namespace Audio
