// The bar that a person watches.
#pragma once

#include <chrono>
#include <cstdint>

namespace Audio {

// Draws a bar on standard error where that is a terminal, at most some ten times a second, and wipes it at
// its end. For one thread.
class ProgressBar {
public:
    explicit ProgressBar(std::uint64_t totalFrames);
    ~ProgressBar();
    ProgressBar(ProgressBar const&) = delete;
    ProgressBar& operator=(ProgressBar const&) = delete;

    void Show(std::uint64_t frames);

private:
    std::uint64_t total;
    bool watched;
    std::chrono::steady_clock::time_point next{};
};

} // namespace Audio
