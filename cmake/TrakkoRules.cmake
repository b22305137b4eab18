# One target carries language standard, warnings and Qt strictness; every other target links it. It
# carries no include path: which headers a library sees, its link line alone decides.
add_library(trakko_rules INTERFACE)
target_compile_features(trakko_rules INTERFACE cxx_std_20)
target_compile_options(trakko_rules INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${TRAKKO_WERROR}>:-Werror>)
target_compile_definitions(trakko_rules INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(TRAKKO_SANITIZE)
  target_compile_options(trakko_rules INTERFACE -fsanitize=${TRAKKO_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(trakko_rules INTERFACE -fsanitize=${TRAKKO_SANITIZE})
  if(TRAKKO_SANITIZE MATCHES "undefined")
    target_compile_options(trakko_rules INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

# trakko_room(TARGET): lets the target, and whoever links it, include the headers of the folder in
# hand as "folder/name.h". Each folder has an include root of its own, with nothing in it but a link
# to the folder, so a header behind a wall that the link lines do not open is not found.
function(trakko_room target)
  file(RELATIVE_PATH room ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  string(REPLACE "/" "-" root ${room})
  set(root ${PROJECT_BINARY_DIR}/rooms/${root})
  cmake_path(GET room PARENT_PATH above)
  file(MAKE_DIRECTORY ${root}/${above})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${room} SYMBOLIC)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    target_include_directories(${target} INTERFACE ${root})
  else()
    target_include_directories(${target} PUBLIC ${root})
  endif()
endfunction()

# trakko_library(NAME LINKS ... SOURCES ...): a library of the folder in hand; it links only what it
# may use, and sees the headers of no other folders.
function(trakko_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC trakko_rules ${ARG_LINKS})
  trakko_room(${name})
endfunction()

# trakko_test(NAME LINKS ... SOURCES ...): a Qt Test program, registered with CTest under its name.
function(trakko_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE trakko_rules trakko_tests Qt6::Test ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  # Tests are full of short texts; plain literals read best there.
  target_compile_options(${name} PRIVATE -UQT_NO_CAST_FROM_ASCII)
  target_compile_definitions(${name} PRIVATE
    TRAKKO_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()

# trakko_bench(NAME LINKS ... SOURCES ... [BRIEF FILTER]): a Google Benchmark program below
# <build>/bench. CTest runs it briefly, only to see that it still works: the shortest time, without a
# display, and of its sizes only what FILTER names (a leading "-": all but these).
function(trakko_bench name)
  cmake_parse_arguments(ARG "" "BRIEF" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_BRIEF)
    set(ARG_BRIEF .)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE trakko_rules trakko_benches benchmark::benchmark ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
  if(TRAKKO_DEVELOPER)
    add_test(NAME ${name}
      COMMAND ${name} --benchmark_min_time=0.001 --benchmark_filter=${ARG_BRIEF})
    set_tests_properties(${name} PROPERTIES LABELS bench TIMEOUT 180
      FAIL_REGULAR_EXPRESSION "ERROR OCCURRED"
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=*=false")
  endif()
endfunction()
