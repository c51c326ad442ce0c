// What the ways to sleep rest on: the system's own waits on words. For platform/waiting.cpp alone.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "platform/waiting.h"

namespace QMT::platform {

using Word = std::atomic<std::uint32_t>;

// Whether the system waits on one word, and on several at once; the second implies the first.
bool SystemWaitsOnWord();
bool SystemWaitsOnWords();

// As SleepOnWords, for one word or, where the system waits on several, for at most maxVectoredWords.
//
// Linux: the kernel's own vectored wait. Windows waits on one address in one call: a sleeper on several words
// is listed with each of them, and sleeps on a word of its own, which those who wake set.
bool SystemSleepOnWords(std::span<WaitWord const> words, WaitDeadline const& deadline);

// Wakes those who sleep in SystemSleepOnWords with that word. It uses the address only.
void SystemWake(Word& word);

// Whether every word holds what is expected of it.
bool AllAsExpected(std::span<WaitWord const> words);

// False without a deadline.
bool HasPassed(WaitDeadline const& deadline);

} // namespace QMT::platform
