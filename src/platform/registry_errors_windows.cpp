#include "platform/registry_errors.h"

#include <windows.h>

namespace QMT::platform {

constinit SystemError const nothingThere = ERROR_FILE_NOT_FOUND;
constinit SystemError const keyIsGone = ERROR_KEY_DELETED;
constinit SystemError const accessRefused = ERROR_ACCESS_DENIED;
constinit SystemError const noOpenKey = ERROR_INVALID_HANDLE;
constinit SystemError const hasSubKeys = ERROR_ACCESS_DENIED;
constinit SystemError const badArgument = ERROR_INVALID_PARAMETER;
constinit SystemError const tooMuchData = ERROR_ARITHMETIC_OVERFLOW;
constinit SystemError const noNameInText = ERROR_INVALID_NAME;

} // namespace QMT::platform
