# Flags shared by everything we compile, and one function per kind of target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # The sloppiness lets ccache serve files that use the precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
      "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
      ${CCACHE_PROGRAM})
endif()

add_library(tavoran_flags INTERFACE)
target_compile_options(tavoran_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CCACHE_PROGRAM)
  target_compile_options(tavoran_flags INTERFACE -fpch-preprocess)
endif()
if(TAVORAN_WERROR)
  target_compile_options(tavoran_flags INTERFACE -Werror)
endif()
if(TAVORAN_SANITIZE)
  target_compile_options(tavoran_flags INTERFACE -fsanitize=${TAVORAN_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(tavoran_flags INTERFACE -fsanitize=${TAVORAN_SANITIZE})
endif()

add_library(tavoran_qt_flags INTERFACE)
target_compile_definitions(tavoran_qt_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CONTEXTLESS_CONNECT
  QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_link_libraries(tavoran_qt_flags INTERFACE tavoran_flags)

# tavoran_library(NAME services SOURCES a.cpp a.h ... LINKS Qt6::Core net ...)
# A Qt static library below src/; its public include root is src/ itself.
function(tavoran_library)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LINKS" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  set_target_properties(${ARG_NAME} PROPERTIES AUTOMOC ON)
  target_include_directories(${ARG_NAME} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_LINKS} tavoran_qt_flags)
  target_precompile_headers(${ARG_NAME} REUSE_FROM tavoran_pch)
endfunction()

# tavoran_test(NAME tst_Thing SOURCES tst_Thing.cpp ... LINKS net ...)
# One Qt Test executable, registered with CTest, run offscreen. Each source includes its own moc output,
# made by moc alone: AUTOMOC would start two more programs and compile an empty file for every test.
function(tavoran_test)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LINKS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  set_target_properties(${ARG_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  target_include_directories(${ARG_NAME} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LINKS} test_support Qt6::Test tavoran_qt_flags)
  target_precompile_headers(${ARG_NAME} REUSE_FROM tavoran_pch)
  list(FILTER ARG_SOURCES INCLUDE REGEX "\\.cpp$")
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.7)
    # QTRY_... itself narrows there; options of a source come after those of its target.
    set_source_files_properties(${ARG_SOURCES} PROPERTIES COMPILE_OPTIONS -Wno-conversion)
  endif()
  foreach(source ${ARG_SOURCES})
    string(REGEX REPLACE "cpp$" "moc" moc "${CMAKE_CURRENT_BINARY_DIR}/${source}")
    qt_generate_moc(${source} ${moc})
    target_sources(${ARG_NAME} PRIVATE ${moc})
  endforeach()
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
  set_tests_properties(${ARG_NAME} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8" TIMEOUT 120)
endfunction()

# practice_library / practice_test: the practice platform, plain C++ without Qt.
function(practice_library)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LINKS" ${ARGN})
  add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  target_include_directories(${ARG_NAME} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${ARG_NAME} PUBLIC ${ARG_LINKS} tavoran_flags)
endfunction()
