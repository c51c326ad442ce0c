# Compiles every public header twice: as the first and only thing in a source, and behind the macros that
# <windows.h> would define: those of tests/support/windows_macros.h, and the operations that it renames to a narrow
# or a wide form, here to what does not compile, so that no public header uses a plausible name of them. On Windows
# the real one, in front of it and behind it, with all that it defines.

set(renamed
    CopyFile CreateDirectory CreateEvent CreateFile CreateMutex CreateProcess CreateSemaphore DeleteFile
    FindFirstFile FindNextFile FormatMessage GetCommandLine GetCurrentDirectory GetCurrentTime
    GetFileAttributes GetMessage GetModuleFileName GetObject GetTempPath GetTimeFormat GetUserName
    LoadLibrary MoveFile OpenEvent PostMessage RegCreateKey RegDeleteKey RegOpenKey RegQueryValue
    RegSetValue RemoveDirectory ReplaceText ReportEvent SendMessage SetCurrentDirectory
    SetFileAttributes StartService)
list(TRANSFORM renamed REPLACE ".+" "#define \\0 0renamed\n")

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/include/*.h)

# The language's headers come in front of the macros: they are the system's own affair.
set(standard "")
foreach(header IN LISTS headers)
    file(STRINGS ${PROJECT_SOURCE_DIR}/include/${header} includes REGEX "^#include <")
    list(APPEND standard ${includes})
endforeach()
list(REMOVE_DUPLICATES standard)
list(JOIN standard "\n" standard)
list(JOIN renamed "" renamed)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/header_checks/behind_windows.h
    CONTENT "@standard@\n#include \"windows_macros.h\"\n@renamed@" @ONLY)

set(sources "")
foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${header} name)
    set(alone ${PROJECT_BINARY_DIR}/header_checks/${name}_alone.cpp)
    file(CONFIGURE OUTPUT ${alone} CONTENT "#include \"@header@\"\n#include \"@header@\"\n" @ONLY)
    set(behind ${PROJECT_BINARY_DIR}/header_checks/${name}_behind_windows.cpp)
    file(CONFIGURE OUTPUT ${behind} CONTENT "#include \"behind_windows.h\"\n#include \"@header@\"\n" @ONLY)
    list(APPEND sources ${alone} ${behind})
    if(WIN32)
        set(real ${PROJECT_BINARY_DIR}/header_checks/${name}_with_windows)
        file(CONFIGURE OUTPUT ${real}_first.cpp CONTENT "#include <windows.h>\n#include \"@header@\"\n" @ONLY)
        file(CONFIGURE OUTPUT ${real}_last.cpp CONTENT "#include \"@header@\"\n#include <windows.h>\n" @ONLY)
        list(APPEND sources ${real}_first.cpp ${real}_last.cpp)
    endif()
endforeach()

add_library(qmt_header_checks OBJECT ${sources})
target_include_directories(qmt_header_checks PRIVATE ${PROJECT_SOURCE_DIR}/tests/support
    ${PROJECT_BINARY_DIR}/header_checks)
target_link_libraries(qmt_header_checks PRIVATE QMT::utilu qmt_build_flags)
