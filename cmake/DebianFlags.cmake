# Compiles as the distribution compiles its own packages: hardened by the flags that dpkg-buildflags names for this
# release and architecture, without debug information, and without a trace of the folder that this is built in.
find_program(DPKG_BUILDFLAGS dpkg-buildflags REQUIRED)

# debian_flags(NAME VARIABLE): the list of flags called NAME. Paths are mapped below, where blanks do no harm.
function(debian_flags name variable)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env
      DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow\ reproducible=-fixfilepath,-fixdebugpath
      DEB_CXXFLAGS_MAINT_STRIP=-g
      ${DPKG_BUILDFLAGS} --get ${name}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(${variable} ${flags} PARENT_SCOPE)
endfunction()

debian_flags(CPPFLAGS preprocessor_flags)
debian_flags(CXXFLAGS compiler_flags)
debian_flags(LDFLAGS linker_flags)
add_compile_options(${preprocessor_flags} ${compiler_flags} "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")
add_link_options(${linker_flags} -Wl,--as-needed)

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
