#include "platform/registry_errors.h"

#include <cerrno>

namespace QMT::platform {

constinit SystemError const nothingThere = ENOENT;
constinit SystemError const keyIsGone = EIDRM;
constinit SystemError const accessRefused = EACCES;
constinit SystemError const noOpenKey = EBADF;
constinit SystemError const hasSubKeys = ENOTEMPTY;
constinit SystemError const badArgument = EINVAL;
constinit SystemError const tooMuchData = EOVERFLOW;
constinit SystemError const noNameInText = EILSEQ;

} // namespace QMT::platform
