# Run by CPack when the packages are made: it gives the library scripts that call ldconfig, although a trigger does so.
foreach(package ${CPACK_PACKAGE_FILES})
  if(package MATCHES "/libvarnik[0-9]+_")
    execute_process(COMMAND dpkg-deb -R ${package} ${package}.d COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package}.d/DEBIAN/postinst ${package}.d/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group -b ${package}.d ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${package}.d)
  endif()
endforeach()
