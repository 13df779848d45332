# The settings that every target of the project shares, and the three ways to make one.

include(GNUInstallDirs)
find_package(PkgConfig REQUIRED)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
  # Paths below the source tree count as relative ones, so that every checkout on a machine shares one cache.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1 "${CCACHE}")
endif()

# One rounding per operation everywhere: the loudness and the rendered samples are compared bit for bit.
add_compile_options(
  -ffp-contract=off
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2)

# Releases read files of any origin: their tables of addresses become read-only at the start.
add_link_options("$<$<CONFIG:Release>:LINKER:-z,relro,-z,now>")

# Lets a target, and with PUBLIC or INTERFACE whoever links it, include the headers of the present folder as "folder/Name.h".
# No other path leads to them: an include of what a room is not linked to does not compile.
function(zarnet_headers target scope)
  file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
  set(root "${PROJECT_BINARY_DIR}/rooms/${target}")
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY "${root}/${parent}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${root}/${folder}" SYMBOLIC)
  target_include_directories(${target} ${scope} "${root}")
endfunction()

# zarnet_library(NAME SOURCES … [PUBLIC lib…] [PRIVATE lib…]): the library of one room.
function(zarnet_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  zarnet_headers(${name} PUBLIC)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()

# zarnet_test(NAME SOURCES … LIBRARIES lib… [SOUND filter]): one GoogleTest binary; each of its cases is a test of CTest, labelled
# with the room that the folder belongs to. Those that the filter names start a sound server of their own: PulseAudio, and as
# "PipeWire.…" once more with that.
function(zarnet_test name)
  cmake_parse_arguments(ARG "" "SOUND" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  zarnet_headers(${name} PRIVATE)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} zarnet_support GTest::gmock GTest::gtest_main)
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 600 LABELS ${room})
  if(ARG_SOUND)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST TEST_FILTER "${ARG_SOUND}" TEST_PREFIX PipeWire. TEST_LIST ${name}_PIPEWIRE
      PROPERTIES TIMEOUT 600 LABELS ${room} ENVIRONMENT ZARNET_TEST_SERVER=pipewire)
  endif()
endfunction()

# zarnet_benchmark(NAME SOURCES … LIBRARIES lib…): one Google Benchmark program, run by script/bench.
function(zarnet_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  zarnet_headers(${name} PRIVATE)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} benchmark::benchmark_main)
endfunction()
