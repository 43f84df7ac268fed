# cmake -D INPUT=SampleNames.tsv -D OUTPUT=SampleData.cpp -P SampleData.cmake
#
# Makes a source file of the lists of names that the sample library is put together from. What it can't make sense of ends
# the build with the line.
cmake_minimum_required(VERSION 3.25)

# Each list: its name in the table, its name in SampleData.h, the type of its entries, and its columns in the order of the
# type's members: T a text, N a number, F one of SampleForces.
set(lists
  "given name,givenNames,std::string_view,T" "surname,surnames,std::string_view,T" "place,places,std::string_view,T"
  "adjective,adjectives,std::string_view,T" "noun,nouns,std::string_view,T" "doing,doings,std::string_view,T"
  "time,times,std::string_view,T" "orchestra,orchestras,std::string_view,T" "choir,choirs,std::string_view,T"
  "small ensemble,smallEnsembles,std::string_view,T" "style,styles,SampleStyleTraits,NNNNNT"
  "work,works,SampleWork,TTTFNNNT" "folk tune,folkTunes,SampleTune,TT" "old tune,oldTunes,SampleTune,TT")

set(patternT "^[^ ].*[^ ]$|^[^ ]$")
set(patternN "^(0|[1-9][0-9]*)$")
set(patternF "^(keyboard|orchestra|chamber|voice|choir)$")

# The entry of a list in C++, in `result`.
function(entry result line kinds)
  string(REPLACE "\t" ";" columns "${line}")
  list(POP_FRONT columns)
  list(LENGTH columns count)
  string(LENGTH "${kinds}" wanted)
  if(NOT count EQUAL wanted)
    message(FATAL_ERROR "${INPUT}: ${count} columns in place of ${wanted}: ${line}")
  endif()
  set(members)
  foreach(column IN LISTS columns)
    string(SUBSTRING "${kinds}" 0 1 kind)
    string(SUBSTRING "${kinds}" 1 -1 kinds)
    if(NOT column MATCHES "${pattern${kind}}")
      message(FATAL_ERROR "${INPUT}: '${column}' does not belong here: ${line}")
    endif()
    if(kind STREQUAL "T")
      set(column "\"${column}\"")
    elseif(kind STREQUAL "F")
      set(column "SampleForces::${column}")
    endif()
    list(APPEND members "${column}")
  endforeach()
  list(JOIN members ", " members)
  set(${result} "{${members}}" PARENT_SCOPE)
endfunction()

file(STRINGS "${INPUT}" lines ENCODING UTF-8 REGEX "^[^#]")
foreach(line IN LISTS lines)
  # What a list of CMake's or a text of C++ would take for its own.
  if(line MATCHES "[][;\"\\]")
    message(FATAL_ERROR "${INPUT}: none of [ ] ; \" \\ can be in a line: ${line}")
  endif()
  string(REGEX REPLACE "\t.*" "" name "${line}")
  set(description ${lists})
  list(FILTER description INCLUDE REGEX "^${name},")
  if(NOT name MATCHES "^[a-z ]+$" OR NOT description MATCHES "^${name},([^,]*),([^,]*),([^,]*)$")
    message(FATAL_ERROR "${INPUT}: there is no list of this name: ${line}")
  endif()
  set(id ${CMAKE_MATCH_1})
  entry(added "${line}" "${CMAKE_MATCH_3}")
  string(APPEND entries_${id} "    ${added},\n")
  math(EXPR count_${id} "${count_${id}} + 1")
endforeach()

set(text "#include \"sources/sample/SampleData.h\"\n\n#include <array>\n\nnamespace tavrion {\n\nnamespace {\n")
set(spans)
foreach(description IN LISTS lists)
  string(REGEX MATCH "^([^,]*),([^,]*),([^,]*)" matched "${description}")
  set(id ${CMAKE_MATCH_2})
  if(NOT count_${id})
    message(FATAL_ERROR "${INPUT}: the list '${CMAKE_MATCH_1}' has no entry")
  endif()
  string(APPEND text
    "\nconstexpr std::array<${CMAKE_MATCH_3}, ${count_${id}}> ${id}{{\n${entries_${id}}}};\n")
  string(APPEND spans "constinit const std::span<const ${CMAKE_MATCH_3}> SampleData::${id}(tavrion::${id});\n")
endforeach()
string(APPEND text "\n}  // namespace\n\n${spans}\n}  // namespace tavrion\n")
file(WRITE "${OUTPUT}" "${text}")
