// Who may use an object of the system.
#pragma once

namespace QMT::platform {

// How far it has come. After anything but Done the object is as it was, and the calling thread's last system
// error tells why.
enum class OpenAccess { Done, NoDescriptor, DescriptorNotMade, ListNotSet, ObjectRefused };

// Opens the object behind a handle to all users. Windows: any object of the kernel; its access list is then
// one that grants everyone everything, for which the handle needs the right to change it. POSIX: a handle is
// a file descriptor; everybody may then read and write the file behind it, and execute or search it if its
// owner may.
OpenAccess OpenToAllUsers(void* handle);

} // namespace QMT::platform
