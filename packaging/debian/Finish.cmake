# Run by cpack between installing and packing, for what Debian has otherwise than an installation by hand: programs
# without symbols and compiler's notes, manual pages and change logs compressed.
file(GLOB programs "${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/*")
file(GLOB texts
  "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man1/*.1"
  "${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog*")
if(NOT programs OR NOT texts)
  message(FATAL_ERROR "nothing is installed below ${CPACK_TEMPORARY_DIRECTORY}")
endif()
execute_process(
  COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note ${programs}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip --best --no-name ${texts} COMMAND_ERROR_IS_FATAL ANY)
