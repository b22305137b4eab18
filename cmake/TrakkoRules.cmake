# One target carries language standard, warnings and Qt strictness; every other target links it.
add_library(trakko_rules INTERFACE)
target_compile_features(trakko_rules INTERFACE cxx_std_20)
target_compile_options(trakko_rules INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${TRAKKO_WERROR}>:-Werror>)
target_compile_definitions(trakko_rules INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(trakko_rules INTERFACE ${PROJECT_SOURCE_DIR})

if(TRAKKO_SANITIZE)
  target_compile_options(trakko_rules INTERFACE -fsanitize=${TRAKKO_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(trakko_rules INTERFACE -fsanitize=${TRAKKO_SANITIZE})
  if(TRAKKO_SANITIZE MATCHES "undefined")
    target_compile_options(trakko_rules INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

# trakko_library(NAME LINKS ... SOURCES ...): one library per folder; it links only what it may use.
function(trakko_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC trakko_rules ${ARG_LINKS})
endfunction()

# trakko_test(NAME LINKS ... SOURCES ...): a Qt Test program, registered with CTest under its name.
function(trakko_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE trakko_rules Qt6::Test ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  # Tests are full of short texts; plain literals read best there.
  target_compile_options(${name} PRIVATE -UQT_NO_CAST_FROM_ASCII)
  target_compile_definitions(${name} PRIVATE
    TRAKKO_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()

# trakko_bench(NAME LINKS ... SOURCES ...): a Google Benchmark program below <build>/bench.
function(trakko_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE trakko_rules benchmark::benchmark ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
