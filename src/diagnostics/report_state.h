// Whether the real-time report takes entries.
#pragma once

#include <atomic>
#include <cstdint>

namespace QMT {

struct ReportState {
    std::atomic<bool> reportingOn{false};
    std::atomic<bool> reportWritten{false};
    std::atomic<std::uint64_t> refused{0};

    bool IsGathering() const { return reportingOn && !reportWritten; }

    // True, and counted, when an entry is refused.
    bool Refuses() {
        if (IsGathering())
            return false;
        refused.fetch_add(1, std::memory_order_relaxed);
        return true;
    }
};

extern ReportState reportState;

} // namespace QMT
