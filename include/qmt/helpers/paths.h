// Paths taken apart and repaired, and the directories in which applications keep things.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// ---- paths, as text: nothing here touches the disc but EnsureWriteable. From any thread.
//
// Backslash and slash separate the elements of a path on every system. "The system's separator" is that of
// BaseFile::GetDirSeparator().

// The path with the system's separator wherever it holds the other one.
QMT_UTILU_API String CorrectPathSeparators(String path);

// The last component: what stands behind the last backslash, slash or colon. Empty when nothing does; the
// whole path when there is none of the three.
QMT_UTILU_API String RemoveLeadPath(String path);

// What stands before the last component, without one backslash or slash at its end; a colon stays.
QMT_UTILU_API String RemoveTrailName(String path);

// The path up to its last point. The extension becomes the rest, the point included, and empty when there is
// no point. A point in a directory's name counts, too.
QMT_UTILU_API String RemoveExtension(String path, String& extension);

// The extension that RemoveExtension would find.
QMT_UTILU_API String GetExtension(String path);

// The path without white space at its ends; one that holds a blank gets a double quote at each end that has
// none.
QMT_UTILU_API String QuotedPath(String path);

// The path with each ".." worked out against the element before it, whatever that is called. One without an
// element before it stays in front, and so does one behind it. The elements are joined by the system's
// separator; a separator at the start stays as it is, one at the end goes, and "." elements stay. Of several
// separators in a row all stay but those around what a ".." takes out, so no relative path becomes absolute.
QMT_UTILU_API String FilterPathReversals(String path);

// Lets the owner write to the file or directory at the path; on Windows takes off its other attributes, too.
// True when the process may write to it now; false also when there is nothing at the path. Enters the system.
QMT_UTILU_API bool EnsureWriteable(String path);

// ---- directories
//
// Each function works its result out at its first call and then gives the same for the life of the process,
// whatever the argument is and whatever has changed. From any thread; of first calls that meet, one works it
// out and the others wait. A later call neither waits nor enters the system. No result ends in a separator
// but what the argument brings, or GetUserDataDir's without one, and no directory is made.

// The directory of the running executable; empty when the system does not tell. An executable that has been
// deleted or moved since leaves its former directory.
QMT_UTILU_API String GetAppPath();

// The same directory. The argument has no effect.
QMT_UTILU_API String GetInstallDataDir(String unused);

// "Local Web", a bare name.
QMT_UTILU_API String GetInstallationWebSubdirectory();

// Where the user's applications keep their data, with the sub directory of the first call behind it: on
// Windows "c:\Users\<user name>\AppData\Local\", elsewhere $XDG_DATA_HOME or ~/.local/share. Empty when the
// user has no home directory.
QMT_UTILU_API String GetUserDataDir(String subDirectory);

// The user's pictures and music: on Windows "c:\Users\<user name>\Pictures" and "\Music", elsewhere what the
// file user-dirs.dirs in $XDG_CONFIG_HOME or ~/.config says, else ~/Pictures and ~/Music. Empty when the user
// has no home directory. The arguments have no effect.
QMT_UTILU_API String GetUserPictureDir(String unused);
QMT_UTILU_API String GetUserAudioDir(String unused);

} // namespace QMT
