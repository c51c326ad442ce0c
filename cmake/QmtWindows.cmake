# What is particular to a build for 64-bit Windows.

# Windows finds the libraries beside the program that wants them.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Errors are thrown from one library to the other and to the program, which takes run-time libraries of the
# compiler that all three share. They lie beside the programs, and are installed with the libraries.
if(MINGW)
    set(QMT_RUNTIME_LIBRARIES "")
    foreach(name IN ITEMS libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(
            COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE file
            OUTPUT_STRIP_TRAILING_WHITESPACE
            COMMAND_ERROR_IS_FATAL ANY)
        configure_file(${file} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name} COPYONLY)
        list(APPEND QMT_RUNTIME_LIBRARIES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
    endforeach()
endif()

# Gives the sources of the seam's Windows side, in the folder that calls this, what <windows.h> expects.
function(qmt_set_up_windows_sources)
    file(GLOB sources CONFIGURE_DEPENDS platform/*_windows.cpp)
    set_source_files_properties(${sources} PROPERTIES
        COMPILE_DEFINITIONS "_WIN32_WINNT=0x0A00;NOMINMAX;UNICODE;WIN32_LEAN_AND_MEAN")
endfunction()
