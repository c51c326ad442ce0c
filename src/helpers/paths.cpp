#include "qmt/helpers/paths.h"

#include <utility>

#include "general/never_destroyed.h"
#include "helpers/paths_text.h"
#include "platform/executable.h"
#include "platform/file_permissions.h"
#include "platform/user_directories.h"
#include "qmt/general/files.h"
#include "qmt/helpers/system.h"

namespace QMT {

namespace {

String ExecutableDirectory() {
    return DirectoryOf(String(platform::ExecutablePath()), BaseFile::GetDirSeparator()[0]);
}

String UserDirectory(platform::UserDirectory which) {
    return String(platform::PathOf(which, GetUserNameW().View()));
}

String UserDataDirectory(String const& subDirectory) {
    String const base = UserDirectory(platform::UserDirectory::Data);
    return base.IsEmpty() ? base : base + BaseFile::GetDirSeparator() + subDirectory;
}

} // namespace

bool EnsureWriteable(String path) {
    return platform::MakeWriteable(path.View());
}

String GetAppPath() {
    static NeverDestroyed<String> directory(ExecutableDirectory());
    return *directory;
}

String GetInstallDataDir(String) {
    static NeverDestroyed<String> directory(ExecutableDirectory());
    return *directory;
}

String GetInstallationWebSubdirectory() {
    return u"Local Web";
}

String GetUserDataDir(String subDirectory) {
    static NeverDestroyed<String> directory(UserDataDirectory(subDirectory));
    return *directory;
}

String GetUserPictureDir(String) {
    static NeverDestroyed<String> directory(UserDirectory(platform::UserDirectory::Pictures));
    return *directory;
}

String GetUserAudioDir(String) {
    static NeverDestroyed<String> directory(UserDirectory(platform::UserDirectory::Music));
    return *directory;
}

} // namespace QMT
