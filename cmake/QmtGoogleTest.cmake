# GTest::gtest and GTest::gtest_main: the system's, or for another system made from the sources that Debian's
# googletest brings.

if(NOT CMAKE_CROSSCOMPILING)
    find_package(GTest REQUIRED)
elseif(NOT TARGET GTest::gtest)
    find_path(QMT_GOOGLETEST_SOURCES googletest/CMakeLists.txt
        PATHS /usr/src/googletest
        REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    block()
        set(BUILD_SHARED_LIBS OFF)
        set(BUILD_GMOCK OFF)
        set(INSTALL_GTEST OFF)
        set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # the variables above count as its options
        add_subdirectory(${QMT_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    endblock()
endif()
