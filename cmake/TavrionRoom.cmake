# One library a room. A room's logic is every .cpp of its folder; who may link whom is stated in src/CMakeLists.txt.

add_library(tavrion_options INTERFACE)
target_include_directories(tavrion_options INTERFACE "${CMAKE_SOURCE_DIR}/src")
# GCC 12 takes the value of a std::optional for unset right behind the test that it is set; clang and clang-tidy look for
# unset values without that mistake.
target_compile_options(tavrion_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${TAVRION_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wno-nullability-extension>)
if(TAVRION_SANITIZE)
  target_compile_options(tavrion_options INTERFACE
    -fsanitize=${TAVRION_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tavrion_options INTERFACE -fsanitize=${TAVRION_SANITIZE})
endif()

if(TAVRION_FUZZ)
  target_compile_options(tavrion_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(tavrion_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Headers that most files include, parsed once for all rooms and once for all tests. A build without them proves that every
# file includes what it needs.
function(tavrion_precompiled name header)
  if(NOT TAVRION_PRECOMPILED)
    return()
  endif()
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "// Nothing but the header.\n")
  add_library(${name} OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
  target_link_libraries(${name} PRIVATE tavrion_options fmt::fmt absl::time Threads::Threads ${ARGN})
  target_precompile_headers(${name} PRIVATE "${header}")
  # What lets ccache keep what was compiled with such headers.
  target_compile_options(tavrion_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
    $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
endfunction()

function(tavrion_use_precompiled target name)
  if(TAVRION_PRECOMPILED)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()

# All .cpp directly in the folders below src or tests.
function(tavrion_sources result below)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${below}/${folder}/*.cpp")
    list(APPEND found ${here})
  endforeach()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# tavrion_room(name FOLDER path... LINKS target...): the static library tavrion_<name> of all .cpp in the folders.
function(tavrion_room name)
  cmake_parse_arguments(ROOM "" "" "FOLDER;LINKS" ${ARGN})
  tavrion_sources(sources src ${ROOM_FOLDER})
  if(sources)
    add_library(tavrion_${name} STATIC ${sources})
    target_link_libraries(tavrion_${name} PUBLIC tavrion_options ${ROOM_LINKS})
    tavrion_use_precompiled(tavrion_${name} tavrion_room_headers)
  else()
    add_library(tavrion_${name} INTERFACE)
    target_link_libraries(tavrion_${name} INTERFACE tavrion_options ${ROOM_LINKS})
  endif()
endfunction()

# tavrion_tests(name FOLDER path... LINKS target... [COST number]): one test executable for all .cpp of the folders. Tests of
# a higher cost start earlier, so that no long one is left for the end. NO_QUEUES: what they
# test has no queue, or they test it in processes of its own, so that ThreadSanitizer is not built for them.
function(tavrion_tests name)
  cmake_parse_arguments(T "NO_QUEUES" "COST" "FOLDER;LINKS" ${ARGN})
  if(T_NO_QUEUES AND TAVRION_SANITIZE STREQUAL "thread")
    return()
  endif()
  if(NOT T_COST)
    set(T_COST 0)
  endif()
  tavrion_sources(sources tests ${T_FOLDER})
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  target_include_directories(${name}_tests PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${name}_tests PRIVATE ${T_LINKS} tavrion_testing GTest::gtest GTest::gmock GTest::gtest_main)
  tavrion_use_precompiled(${name}_tests tavrion_test_headers)
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 COST ${T_COST})
endfunction()

# tavrion_fuzz(name LINKS target...): the fuzz target name of fuzz/<name>.cpp; its corpus is fuzz/corpus/<name>/.
# tools/fuzz runs every target listed in the build directory's fuzz-targets.txt; the target fuzz_targets builds them all, and
# of the rooms only those they stand on. The searching engine is linked to them alone; what it watches is in all of the build.
function(tavrion_fuzz name)
  cmake_parse_arguments(FUZZ "" "" "LINKS" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE ${FUZZ_LINKS})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  if(NOT TARGET fuzz_targets)
    add_custom_target(fuzz_targets)
  endif()
  add_dependencies(fuzz_targets ${name})
  set_property(GLOBAL APPEND_STRING PROPERTY TAVRION_FUZZ_TARGETS "${name}\n")
  get_property(targets GLOBAL PROPERTY TAVRION_FUZZ_TARGETS)
  file(WRITE "${CMAKE_BINARY_DIR}/fuzz-targets.txt" "${targets}")
endfunction()

# tavrion_script_test(name script argument...): a test that is a Python script of its own.
function(tavrion_script_test name script)
  if(TAVRION_SANITIZE STREQUAL "thread")
    return()
  endif()
  add_test(NAME ${name} COMMAND Python3::Interpreter "${CMAKE_SOURCE_DIR}/${script}" ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 COST 30 ENVIRONMENT "PYTHONDONTWRITEBYTECODE=1")
endfunction()
