# Shared target set-up: warnings, sanitizers, and one library per module folder.

if(VELMO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
  # Coverage instrumentation in the libraries, so that the fuzz targets see the code they
  # exercise (without it libFuzzer only sees the target's own file and mutates blind).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
endif()

function(velmo_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()

# velmo_library(<target> <folder> LINKS <deps...>)
# Sources are found by glob so that a new type pair needs no build edit.
function(velmo_library target folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS
    "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  if(NOT sources)
    set(sources "${PROJECT_SOURCE_DIR}/cmake/empty.cpp")
  endif()
  add_library(${target} STATIC ${sources})
  # Includes are written from src/: #include "MarkdownEngine/Core/MarkdownDocument.h".
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${target} PUBLIC ${ARG_LINKS})
  velmo_warnings(${target})
endfunction()

# velmo_test(<name> <folder> LINKS <libs...>): every .cpp of the folder is one test program.
function(velmo_test name folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${folder}/*.cpp" "${folder}/*.h")
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE velmo_test_main ${ARG_LINKS})
  velmo_warnings(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen;VELMO_SOURCE_DIR=${PROJECT_SOURCE_DIR};VELMO_BUILD_DIR=${PROJECT_BINARY_DIR}")
endfunction()
