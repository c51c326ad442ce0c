# Compiles every public header twice: as the first and only thing in a source, and behind the macros that
# <windows.h> would define.

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/include/*.h)
set(sources "")
foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${header} name)
    set(alone ${PROJECT_BINARY_DIR}/header_checks/${name}_alone.cpp)
    file(CONFIGURE OUTPUT ${alone} CONTENT "#include \"@header@\"\n#include \"@header@\"\n" @ONLY)
    set(behind ${PROJECT_BINARY_DIR}/header_checks/${name}_behind_windows.cpp)
    file(CONFIGURE OUTPUT ${behind} CONTENT "#include \"windows_macros.h\"\n#include \"@header@\"\n" @ONLY)
    list(APPEND sources ${alone} ${behind})
endforeach()

add_library(qmt_header_checks OBJECT ${sources})
target_include_directories(qmt_header_checks PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
target_link_libraries(qmt_header_checks PRIVATE QMT::utilu qmt_build_flags)
