// What the system knows of the user with whose rights the process runs.
#pragma once

#include <cerrno>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace QMT::platform {

// A field of the user's entry, such as &passwd::pw_dir; empty when he has none.
inline std::string FieldOfUser(char* passwd::*field) {
    constexpr std::size_t enoughRoom = 1024 * 1024;
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> room(1024);
    while (::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found) == ERANGE &&
           room.size() < enoughRoom)
        room.resize(2 * room.size());
    return found && found->*field ? found->*field : "";
}

} // namespace QMT::platform
