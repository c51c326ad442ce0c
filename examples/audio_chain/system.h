// The little that the program asks of the operating system beyond the language's library.
#pragma once

namespace Audio {

// Lets the signals that ask a program to end (interrupt, terminate, hang-up) only be noted, see `StopSignal`,
// and a write beyond the limit on file sizes fail like any other. Call it first, and once.
void CatchSignals();

// The number of the last signal that asked the program to end; 0 if none has come. From any thread.
int StopSignal();

// Throws Interrupted if a signal has asked the program to end. From any thread.
void ThrowIfInterrupted();

// True if a person watches what is written to standard error.
bool ErrorOutputIsTerminal();

} // namespace Audio
