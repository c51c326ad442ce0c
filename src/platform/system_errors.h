// The numbers by which the system reports its failures, and their texts.
#pragma once

#include <cstdint>
#include <string>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// A failure's number as the system gives it; 0 means success.
using SystemError = std::uint32_t;

// The calling thread's last error; read it before anything else enters the system.
SystemError LastSystemError() noexcept;

// The system's text for the number, with whatever line end it brings; empty when there is none.
std::basic_string<CodeUnit> SystemErrorMessage(SystemError error);

} // namespace QMT::platform
