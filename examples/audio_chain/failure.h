// How the program's own failures travel: as exceptions up to main, which tells the user and the error log.
#pragma once

#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Audio {

// A run that cannot go on. The text is a whole message for the user, in the bytes of the command line.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The user has asked the program to end, by the signal of this number.
class Interrupted : public std::exception {
public:
    explicit Interrupted(int number) : signalNumber(number) {}

    char const* what() const noexcept override { return "interrupted"; }

    int SignalNumber() const { return signalNumber; }

private:
    int signalNumber;
};

inline std::string Quoted(std::filesystem::path const& path) {
    std::string text(1, '\'');
    return text.append(path.string()).append(1, '\'');
}

} // namespace Audio
