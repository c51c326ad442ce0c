# qmt_add_compile_fail_test(<name> <source> <diagnostic>...)
#
# Proves that lines do not compile. The source holds the allowed lines and, under `#if QMT_FORBIDDEN == 1`,
# `#if QMT_FORBIDDEN == 2` and so on, the forbidden ones. It is compiled without any of them, which must
# succeed, and then with each in turn, which must bring a message that matches the diagnostic of that number:
# so a forbidden line cannot fail for another reason than the one meant.
function(qmt_add_compile_fail_test name source)
    set(compile ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only -I${PROJECT_SOURCE_DIR}/include
        ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    add_test(NAME ${name}/allowed COMMAND ${compile} -DQMT_FORBIDDEN=0)
    set(number 0)
    foreach(diagnostic IN LISTS ARGN)
        math(EXPR number "${number} + 1")
        add_test(NAME ${name}/forbidden_${number} COMMAND ${compile} -DQMT_FORBIDDEN=${number})
        set_tests_properties(${name}/forbidden_${number} PROPERTIES PASS_REGULAR_EXPRESSION "${diagnostic}")
    endforeach()
endfunction()
