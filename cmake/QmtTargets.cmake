# What every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_package(Threads REQUIRED)

# Warnings and sanitizers, for the libraries and everything that is built beside them.
add_library(qmt_build_flags INTERFACE)
target_compile_options(qmt_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(qmt_build_flags INTERFACE -Wthread-safety)
endif()
if(QMT_SANITIZE)
    target_compile_options(qmt_build_flags INTERFACE
        -fsanitize=${QMT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(qmt_build_flags INTERFACE -fsanitize=${QMT_SANITIZE})
endif()
if(QMT_SYNC_POINTS)
    target_compile_definitions(qmt_build_flags INTERFACE QMT_SYNC_POINTS)
endif()

# The platform's side of a concern of the seam: <concern>_posix.cpp or <concern>_windows.cpp.
if(WIN32)
    set(QMT_PLATFORM windows)
else()
    set(QMT_PLATFORM posix)
endif()
