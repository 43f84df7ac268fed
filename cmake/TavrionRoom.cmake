# One library a room. A room's logic is every .cpp of its folder; who may link whom is stated in src/CMakeLists.txt.

add_library(tavrion_options INTERFACE)
target_include_directories(tavrion_options INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_options(tavrion_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wno-nullability-extension>)
if(TAVRION_SANITIZE)
  target_compile_options(tavrion_options INTERFACE
    -fsanitize=${TAVRION_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tavrion_options INTERFACE -fsanitize=${TAVRION_SANITIZE})
endif()

# tavrion_room(name FOLDER path LINKS target...): the static library tavrion_<name> of all .cpp in the folder.
function(tavrion_room name)
  cmake_parse_arguments(ROOM "" "FOLDER" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/${ROOM_FOLDER}/*.cpp")
  if(sources)
    add_library(tavrion_${name} STATIC ${sources})
    target_link_libraries(tavrion_${name} PUBLIC tavrion_options ${ROOM_LINKS})
  else()
    add_library(tavrion_${name} INTERFACE)
    target_link_libraries(tavrion_${name} INTERFACE tavrion_options ${ROOM_LINKS})
  endif()
endfunction()

# tavrion_tests(name FOLDER path LINKS target...): one test executable for all .cpp of the folder.
function(tavrion_tests name)
  cmake_parse_arguments(T "" "FOLDER" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/${T_FOLDER}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  target_include_directories(${name}_tests PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${name}_tests PRIVATE ${T_LINKS} tavrion_testing GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
