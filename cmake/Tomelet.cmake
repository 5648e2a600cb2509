# What every target of the project shares: language level, warnings, sanitizers, where programs land.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
  add_link_options(-fuse-ld=mold)
endif()

if(TOMELET_SANITIZE)
  add_compile_options(-fsanitize=${TOMELET_SANITIZE} -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${TOMELET_SANITIZE})
endif()

# tomelet_settings(TARGET): include root, warnings, and what keeps Qt's string handling honest.
function(tomelet_settings target)
  target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports overlapping copies inside its own std::string (its bug 105329).
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(TOMELET_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
                                               QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
endfunction()

# tomelet_library(NAME SOURCES... [LINK LIBRARIES...]): one layer of the system.
function(tomelet_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  tomelet_settings(${name})
  target_link_libraries(${name} PUBLIC ${ARG_LINK})
endfunction()

# tomelet_test(NAME SOURCES... [LINK LIBRARIES...]): a GoogleTest program that ctest runs once.
function(tomelet_test name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  tomelet_settings(${name})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE TOMELET_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
                                             TOMELET_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()
