# GoogleTest: the installed package for native builds; for a cross build, the sources Debian
# ships in /usr/src/googletest, compiled with the same toolchain as the code under test.
# Either way the targets are GTest::gtest, GTest::gmock and GTest::gtest_main (the sources
# define these aliases themselves).
if(CMAKE_CROSSCOMPILING)
  set(TARN_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources for cross builds")
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  add_subdirectory(${TARN_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()
