// The seed of random tests: printed at each run, taken from QMT_TEST_SEED where that is set.
#pragma once

#include <cstdlib>
#include <iostream>
#include <random>

namespace QMT {

inline std::mt19937 SeededGenerator() {
    char const* const given = std::getenv("QMT_TEST_SEED");
    auto const seed =
        given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::cout << "QMT_TEST_SEED=" << seed << '\n';
    return std::mt19937(seed);
}

} // namespace QMT
