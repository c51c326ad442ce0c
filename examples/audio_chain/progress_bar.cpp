#include "progress_bar.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "system.h"

namespace Audio {

ProgressBar::ProgressBar(std::uint64_t totalFrames) : total(totalFrames), watched(ErrorOutputIsTerminal()) {}

ProgressBar::~ProgressBar() {
    if (watched)
        std::fprintf(stderr, "\r%*s\r", 60, "");
}

void ProgressBar::Show(std::uint64_t frames) {
    using namespace std::chrono_literals;
    constexpr double width = 50;
    auto const now = watched ? std::chrono::steady_clock::now() : next;
    if (!watched || now < next)
        return;
    next = now + 100ms;
    double const part =
        total == 0 ? 1 : static_cast<double>(std::min(frames, total)) / static_cast<double>(total);
    std::string bar(static_cast<std::size_t>(part * width), '=');
    bar.resize(static_cast<std::size_t>(width), ' ');
    std::fprintf(stderr, "\r[%s] %3.0f %%", bar.c_str(), 100 * part);
}

} // namespace Audio
