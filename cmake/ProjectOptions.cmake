# Flags shared by everything we compile, and one function per kind of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # The sloppiness lets ccache serve files that use the precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
      "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
      ${CCACHE_PROGRAM})
endif()

add_library(tavoran_flags INTERFACE)
target_compile_options(tavoran_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CCACHE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(tavoran_flags INTERFACE -fpch-preprocess)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # gcc takes a source that is included for a header, and in a header this would be a fault.
  target_compile_options(tavoran_flags INTERFACE -Wno-subobject-linkage)
endif()
if(TAVORAN_WERROR)
  target_compile_options(tavoran_flags INTERFACE -Werror)
endif()
if(TAVORAN_SANITIZE)
  # What they find ends the program: a test that only prints it would pass.
  target_compile_options(tavoran_flags INTERFACE
    -fsanitize=${TAVORAN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tavoran_flags INTERFACE -fsanitize=${TAVORAN_SANITIZE})
endif()

# This form of resources has no place for the times of files, which differ from clone to clone.
set(TAVORAN_RCC_OPTIONS --format-version 1)

if(TAVORAN_PACKAGE)
  include(DebianFlags)
endif()

add_library(tavoran_qt_flags INTERFACE)
target_compile_definitions(tavoran_qt_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CONTEXTLESS_CONNECT
  QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_link_libraries(tavoran_qt_flags INTERFACE tavoran_flags)

# tavoran_library(NAME net_records [WINDOWLESS] [CALCULATES] SOURCES a.cpp a.h ... LINKS Qt6::Core app_base ...)
# One room below src/: a Qt static library named after its path. Its public include root is src/ itself.
# WINDOWLESS rooms see no widget, not even in the precompiled header. The numbers of those that calculate are
# the same to the bit whatever the processor can do.
function(tavoran_library)
  cmake_parse_arguments(ARG "WINDOWLESS;CALCULATES" "NAME" "SOURCES;LINKS" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  set_target_properties(${ARG_NAME} PROPERTIES AUTOMOC ON)
  target_include_directories(${ARG_NAME} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_LINKS} tavoran_qt_flags)
  if(ARG_CALCULATES)
    target_compile_options(${ARG_NAME} PRIVATE -ffp-contract=off)
  endif()
  if(ARG_WINDOWLESS)
    target_precompile_headers(${ARG_NAME} REUSE_FROM tavoran_pch_core)
  else()
    target_precompile_headers(${ARG_NAME} REUSE_FROM tavoran_pch)
  endif()
endfunction()

# tavoran_moc(target a.cpp ...)
# Each source includes its own moc output, made by moc alone: AUTOMOC would start two more programs and compile
# an empty file for every test.
function(tavoran_moc target)
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.7)
    # QTRY_... itself narrows there; options of a source come after those of its target.
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -Wno-conversion)
  endif()
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
  foreach(source ${ARGN})
    string(REGEX REPLACE "cpp$" "moc" moc "${CMAKE_CURRENT_BINARY_DIR}/${source}")
    qt_generate_moc(${source} ${moc})
    target_sources(${target} PRIVATE ${moc})
  endforeach()
endfunction()

# tavoran_tests(ROOM net_records [WINDOWLESS] TESTS JsonNumber ... [APART Quote ...] LINKS net_records ...)
# The Qt Test classes of one room, tst_JsonNumber.cpp and so on: one program, test_net_records, which takes the
# name of a class, and one CTest case for each class, run offscreen. WINDOWLESS ones have no window system at all. APART are those that
# call something of their own as another one does: they are compiled by themselves even in a unity build.
function(tavoran_tests)
  cmake_parse_arguments(ARG "WINDOWLESS" "ROOM" "TESTS;APART;LINKS" ${ARGN})
  set(program test_${ARG_ROOM})
  list(TRANSFORM ARG_TESTS PREPEND "tst_" OUTPUT_VARIABLE names)
  list(TRANSFORM names APPEND ".cpp" OUTPUT_VARIABLE sources)
  if(ARG_WINDOWLESS)
    add_executable(${program} "${PROJECT_SOURCE_DIR}/tests/support/main_windowless.cpp" ${sources})
    target_link_libraries(${program} PRIVATE ${ARG_LINKS} test_support)
    target_precompile_headers(${program} REUSE_FROM test_pch_windowless)
  else()
    add_executable(${program} "${PROJECT_SOURCE_DIR}/tests/support/main.cpp" ${sources})
    target_link_libraries(${program} PRIVATE ${ARG_LINKS} test_support_ui)
    target_precompile_headers(${program} REUSE_FROM test_pch)
  endif()
  set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  tavoran_moc(${program} ${sources})
  foreach(name ${ARG_APART})
    set_source_files_properties(tst_${name}.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endforeach()
  foreach(name ${names})
    add_test(NAME ${name} COMMAND ${program} ${name})
  endforeach()
  set_tests_properties(${names} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LANGUAGE=en" TIMEOUT 120)
endfunction()

# tavoran_test(NAME tst_Thing LINKS net ...)
# One test class with a main() of its own.
function(tavoran_test)
  cmake_parse_arguments(ARG "" "NAME" "LINKS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_NAME}.cpp)
  set_target_properties(${ARG_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LINKS} test_support_ui)
  target_precompile_headers(${ARG_NAME} REUSE_FROM test_pch)
  tavoran_moc(${ARG_NAME} ${ARG_NAME}.cpp)
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
  set_tests_properties(${ARG_NAME} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LANGUAGE=en" TIMEOUT 120)
endfunction()

# practice_library(NAME practice_market [CALCULATES] SOURCES ... LINKS ...)
# A part of the practice platform or of the lab, plain C++ without Qt. The numbers of those that calculate are
# the same to the bit whatever the processor can do.
function(practice_library)
  cmake_parse_arguments(ARG "CALCULATES" "NAME" "SOURCES;LINKS" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_LINKS} tavoran_flags)
  if(ARG_CALCULATES)
    # Its checks play years of a market: a little optimisation saves them minutes where there is none else.
    target_compile_options(${ARG_NAME} PRIVATE -ffp-contract=off $<$<CONFIG:Debug>:-O1>)
  endif()
endfunction()
