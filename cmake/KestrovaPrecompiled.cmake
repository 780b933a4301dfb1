# Most of what the compiler reads for a small file is the standard library, and in a test GoogleTest
# and the toolkit besides. With KESTROVA_PRECOMPILE they are read once for all targets. A file that
# forgets an include is found by the presets clang and release, which do without.

option(KESTROVA_PRECOMPILE "Precompile the standard library's headers, for builds that are made often"
       OFF)

# kestrova_precompile(TARGET WHAT): the headers of the library kestrova_precompiled_WHAT.
function(kestrova_precompile target what)
  if(KESTROVA_PRECOMPILE)
    if(what STREQUAL "interface_test")
      # Qt6::Test has each target's directories here.
      target_compile_options(${target} PRIVATE -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR)
    endif()
    target_precompile_headers(${target} REUSE_FROM kestrova_precompiled_${what})
  endif()
endfunction()

# Internal: declares kestrova_precompiled_WHAT.
function(kestrova_precompiled what)
  cmake_parse_arguments(arg "" "" "HEADERS;LINKS" ${ARGN})
  file(CONFIGURE OUTPUT precompiled_${what}.cpp CONTENT "")
  add_library(kestrova_precompiled_${what} OBJECT
    "${CMAKE_CURRENT_BINARY_DIR}/precompiled_${what}.cpp")
  target_link_libraries(kestrova_precompiled_${what} PRIVATE kestrova_options ${arg_LINKS})
  target_precompile_headers(kestrova_precompiled_${what} PRIVATE ${arg_HEADERS})
endfunction()

if(KESTROVA_PRECOMPILE)
  # A precompiled header serves only who is compiled in the same way. In one, g++ 12 does not know
  # headers of the system any more, and warns of what it takes operator+ of strings to do.
  # clang's holds the time when it was made, by which no compiler cache would know it again.
  target_compile_options(kestrova_options INTERFACE
    $<BUILD_INTERFACE:-fPIC> $<BUILD_INTERFACE:-pthread>
    "$<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-restrict;-Wno-stringop-overflow;-Wno-stringop-overread>>"
    "$<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>>")

  set(standard
    <algorithm> <any> <array> <atomic> <charconv> <chrono> <cmath> <condition_variable> <cstddef>
    <cstdint> <cstdio> <cstdlib> <cstring> <deque> <filesystem> <fstream> <functional> <limits> <map>
    <memory> <mutex> <optional> <set> <span> <sstream> <string> <string_view> <system_error> <thread>
    <utility> <variant> <vector>)
  kestrova_precompiled(standard HEADERS ${standard})
  kestrova_precompiled(standard_small HEADERS ${standard})
  target_compile_options(kestrova_precompiled_standard_small PRIVATE ${small_options})
  if(KESTROVA_TESTS)
    find_package(GTest REQUIRED)
    find_package(Qt6 REQUIRED COMPONENTS Test Widgets)
    kestrova_precompiled(test HEADERS ${standard} <gtest/gtest.h> LINKS GTest::gtest)
    kestrova_precompiled(interface_test
      HEADERS ${standard} <gtest/gtest.h> <QtTest/qtestevent.h> <QtTest/qtest_gui.h>
              <QtCore/QAbstractItemModel> <QtWidgets/QApplication>
      LINKS GTest::gtest Qt6::Test Qt6::Widgets)
    kestrova_test_options(kestrova_precompiled_test)
    kestrova_test_options(kestrova_precompiled_interface_test)
    target_compile_options(kestrova_precompiled_interface_test PRIVATE
      -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR)
  endif()
endif()
