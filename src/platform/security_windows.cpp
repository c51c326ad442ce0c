#include "platform/security.h"

#include <windows.h>

namespace QMT::platform {

namespace {

OpenAccess OpenWith(PSECURITY_DESCRIPTOR descriptor, HANDLE handle) {
    if (!::InitializeSecurityDescriptor(descriptor, SECURITY_DESCRIPTOR_REVISION))
        return OpenAccess::DescriptorNotMade;
    // An access list that is there and null grants everything to everyone.
    if (!::SetSecurityDescriptorDacl(descriptor, TRUE, nullptr, FALSE))
        return OpenAccess::ListNotSet;
    return ::SetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, descriptor)
               ? OpenAccess::Done
               : OpenAccess::ObjectRefused;
}

} // namespace

OpenAccess OpenToAllUsers(void* handle) {
    PSECURITY_DESCRIPTOR const descriptor = ::LocalAlloc(LPTR, SECURITY_DESCRIPTOR_MIN_LENGTH);
    if (!descriptor)
        return OpenAccess::NoDescriptor;
    OpenAccess const reached = OpenWith(descriptor, handle);
    DWORD const error = ::GetLastError();
    ::LocalFree(descriptor);
    ::SetLastError(error);
    return reached;
}

} // namespace QMT::platform
