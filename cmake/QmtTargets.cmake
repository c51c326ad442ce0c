# What every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
# Inline members of exported classes stay visible: those of the ring are exported besides.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_package(Threads REQUIRED)

# The platform's side of a concern of the seam: <concern>_posix.cpp or <concern>_windows.cpp.
if(WIN32)
    set(QMT_PLATFORM windows)
    include(QmtWindows)
else()
    set(QMT_PLATFORM posix)
endif()

# Warnings and sanitizers, for the libraries and everything that is built beside them. Users of the libraries
# get none of it.
add_library(qmt_build_flags INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang)$")
    target_compile_options(qmt_build_flags INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
        -Wnon-virtual-dtor -Woverloaded-virtual
        $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
        $<$<BOOL:${QMT_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(QMT_SANITIZE)
    target_compile_options(qmt_build_flags INTERFACE
        -fsanitize=${QMT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(qmt_build_flags INTERFACE -fsanitize=${QMT_SANITIZE})
endif()
if(QMT_SYNC_POINTS)
    target_compile_definitions(qmt_build_flags INTERFACE QMT_SYNC_POINTS)
endif()

# Sets up one of the project's libraries, which exists already: names, include folders, flags, exports.
function(qmt_set_up_library library)
    string(REPLACE qmt "" component ${library})
    add_library(QMT::${component} ALIAS ${library})
    set_target_properties(${library} PROPERTIES
        EXPORT_NAME ${component}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    target_include_directories(${library}
        PUBLIC
            $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${PROJECT_SOURCE_DIR}/src)
    target_compile_features(${library} PUBLIC cxx_std_20)
    target_link_libraries(${library} PRIVATE $<BUILD_INTERFACE:qmt_build_flags>)
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${library} PUBLIC QMT_STATIC)
    elseif(UNIX AND NOT APPLE)
        # Templates of the standard library are visible whatever the compiler is told; the linker hides them.
        set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
        target_link_options(${library} PRIVATE LINKER:--version-script=${exports})
        set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${exports})
        set_property(TARGET ${library} PROPERTY INSTALL_RPATH $ORIGIN)
        if(NOT QMT_SANITIZE)
            target_link_options(${library} PRIVATE LINKER:--no-undefined)
        endif()
    endif()
endfunction()
