# Compiler settings and the few functions with which every folder declares its target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1")
set(CMAKE_SHARED_LINKER_FLAGS_DEV "")
set(CMAKE_EXE_LINKER_FLAGS_DEV "")

# The build tree has the shape of an installed one, so that resources are found the same way.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(KESTROVA_BUNDLE_DIR "${PROJECT_BINARY_DIR}/share/kestrova/Kestrova.bundle")

find_package(Threads REQUIRED)

add_library(kestrova_options INTERFACE)
# Not for those who link the static library from an installed tree.
target_compile_options(kestrova_options INTERFACE "$<BUILD_INTERFACE:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion;-Werror;-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>")
target_include_directories(kestrova_options INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
target_compile_features(kestrova_options INTERFACE cxx_std_20)
target_link_libraries(kestrova_options INTERFACE Threads::Threads)

# So that the linker leaves out what nobody calls.
add_compile_options($<$<CONFIG:Release>:-ffunction-sections> $<$<CONFIG:Release>:-fdata-sections>)

if(KESTROVA_SANITIZE)
  add_compile_options(-fsanitize=${KESTROVA_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KESTROVA_SANITIZE})
endif()

if(KESTROVA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# For what no time is spent in: what ships is made small, and what the sanitizers watch is compiled
# soon.
set(small_options $<$<CONFIG:Release>:-Os>)
if(KESTROVA_SANITIZE)
  set(small_options -O0)
endif()

# The tests' own code is large and built soon. Undefined behaviour is watched for in what they test, and
# not in them: that would take twice as long.
function(kestrova_test_options target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Dev>:-O0>)
  if(KESTROVA_SANITIZE MATCHES "undefined")
    target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
  endif()
endfunction()

include(KestrovaPrecompiled)

# kestrova_module(NAME [SMALL] SOURCES a.cpp ... [LINKS target ...] [PRIVATE_LINKS target ...])
# One static library a folder. SMALL, where no time is spent.
# Third-party libraries go to PRIVATE_LINKS: their headers are for the folder's own .cpp files.
function(kestrova_module name)
  cmake_parse_arguments(arg "SMALL" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  if(arg_SMALL)
    target_compile_options(${name} PRIVATE ${small_options})
  endif()
  target_link_libraries(${name} PUBLIC kestrova_options ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  if(arg_SMALL)
    kestrova_precompile(${name} standard_small)
  else()
    kestrova_precompile(${name} standard)
  endif()
endfunction()

# kestrova_program(NAME SOURCES a.cpp ... [LINKS target ...])
function(kestrova_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE kestrova_options ${arg_LINKS})
  kestrova_precompile(${name} standard)
endfunction()

# kestrova_test(NAME [WHOLE_STACKS] SOURCES a_test.cpp ... [LINKS target ...])
# A GoogleTest program whose cases ctest runs one by one. WHOLE_STACKS, for programs that use the
# media framework: its libraries keep no frame pointers, and a leak is known only by its whole stack
# (four times slower under the address sanitizer).
function(kestrova_test name)
  cmake_parse_arguments(arg "WHOLE_STACKS" "" "SOURCES;LINKS" ${ARGN})
  set(properties ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  if(arg_WHOLE_STACKS)
    list(APPEND properties ENVIRONMENT_MODIFICATION "ASAN_OPTIONS=set:fast_unwind_on_malloc=0")
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE kestrova_options ${arg_LINKS} GTest::gtest_main)
  kestrova_test_options(${name})
  if(Qt6::Test IN_LIST arg_LINKS)
    kestrova_precompile(${name} interface_test)
  else()
    kestrova_precompile(${name} test)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES ${properties})
endfunction()
