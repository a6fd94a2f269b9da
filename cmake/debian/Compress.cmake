# Run by CPack before it packs: Debian wants the manual and the changelog compressed, without name and time so that the bytes
# are always the same.
file(GLOB_RECURSE files ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/*.1 ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog)
foreach(file ${files})
  execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
