// Stands in for <windows.h> in the check that public headers survive it. The header's macros that take a
// plausible name are defined here as things that do not compile, so that no public header uses the name.
#pragma once

// The language's headers come first: they are the system's own affair.
#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))

#define interface struct
#define near
#define far
#define small char
#define CALLBACK __stdcall
#define CONST const
#define DELETE 0x00010000L
#define ERROR 0
#define IGNORE 0
#define IN
#define INFINITE 0xFFFFFFFF
#define NO_ERROR 0L
#define OPTIONAL
#define OUT
#define VOID void
#define Yield()

// Operations that the header renames to a narrow or a wide form.
#define QMT_RENAMED 0renamed
#define CopyFile QMT_RENAMED
#define CreateDirectory QMT_RENAMED
#define CreateEvent QMT_RENAMED
#define CreateFile QMT_RENAMED
#define CreateMutex QMT_RENAMED
#define CreateProcess QMT_RENAMED
#define CreateSemaphore QMT_RENAMED
#define DeleteFile QMT_RENAMED
#define FindFirstFile QMT_RENAMED
#define FindNextFile QMT_RENAMED
#define FormatMessage QMT_RENAMED
#define GetCommandLine QMT_RENAMED
#define GetCurrentDirectory QMT_RENAMED
#define GetCurrentTime QMT_RENAMED
#define GetFileAttributes QMT_RENAMED
#define GetMessage QMT_RENAMED
#define GetModuleFileName QMT_RENAMED
#define GetObject QMT_RENAMED
#define GetTempPath QMT_RENAMED
#define GetTimeFormat QMT_RENAMED
#define GetUserName QMT_RENAMED
#define LoadLibrary QMT_RENAMED
#define MoveFile QMT_RENAMED
#define OpenEvent QMT_RENAMED
#define PostMessage QMT_RENAMED
#define RegCreateKey QMT_RENAMED
#define RegDeleteKey QMT_RENAMED
#define RegOpenKey QMT_RENAMED
#define RegQueryValue QMT_RENAMED
#define RegSetValue QMT_RENAMED
#define RemoveDirectory QMT_RENAMED
#define ReplaceText QMT_RENAMED
#define ReportEvent QMT_RENAMED
#define SendMessage QMT_RENAMED
#define SetCurrentDirectory QMT_RENAMED
#define SetFileAttributes QMT_RENAMED
#define StartService QMT_RENAMED
