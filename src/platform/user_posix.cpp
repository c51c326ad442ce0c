#include "platform/user.h"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

#include "platform/utf8_text.h"

namespace QMT::platform {

std::basic_string<CodeUnit> UserName() {
    constexpr std::size_t enoughRoom = 1024 * 1024;
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> room(1024);
    while (::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found) == ERANGE &&
           room.size() < enoughRoom) {
        room.resize(2 * room.size());
    }
    return found ? FromUtf8(found->pw_name) : std::basic_string<CodeUnit>();
}

} // namespace QMT::platform
