# What `cmake --install` puts where: the library, its headers by the tree's own paths, the tool, the CMake package
# (`find_package(varnik)`, targets varnik::varnik and varnik::vkbuf), the pkg-config file and the printers for gdb. All of it
# may be moved to another prefix. The components are library, development and tool.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/varnik)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
install(TARGETS varnik EXPORT varnikTargets LIBRARY COMPONENT library NAMELINK_COMPONENT development)
if(TARGET vkbuf)
  if(BUILD_SHARED_LIBS AND NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} AND NOT CMAKE_SKIP_INSTALL_RPATH)
    file(RELATIVE_PATH libdir_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(vkbuf PROPERTIES INSTALL_RPATH "$ORIGIN/${libdir_from_bin}")
  endif()
  # An export of its own: who has no tool can use the library.
  install(TARGETS vkbuf EXPORT varnikToolTargets COMPONENT tool)
  install(EXPORT varnikToolTargets NAMESPACE varnik:: DESTINATION ${package_dir})
endif()
# Folders without a public header would be made too, empty, so they are named.
install(DIRECTORY varnik DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h"
  PATTERN "internal" EXCLUDE
  REGEX "/varnik/(encoding|files|padding|search|simd|text)$" EXCLUDE)

install(EXPORT varnikTargets NAMESPACE varnik:: DESTINATION ${package_dir})
configure_package_config_file(cmake/varnikConfig.cmake.in varnikConfig.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(varnikConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/varnikConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/varnikConfigVersion.cmake
  cmake/FindVarnikGmp.cmake DESTINATION ${package_dir})

# pkg-config: folders relative to where the file lies, unless they were given as absolute ones. Users of a static library
# link what it stands on, so there it is a plain requirement.
set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(VARNIK_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH up /${pc_dir} /)
  string(REGEX REPLACE "/$" "" VARNIK_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE ${CMAKE_INSTALL_${dir}})
    set(VARNIK_PC_${dir} ${CMAKE_INSTALL_${dir}})
  else()
    set(VARNIK_PC_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
  endif()
endforeach()
if(BUILD_SHARED_LIBS)
  set(VARNIK_PC_REQUIRES Requires.private)
else()
  set(VARNIK_PC_REQUIRES Requires)
endif()
configure_file(cmake/varnik.pc.in varnik.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/varnik.pc DESTINATION ${pc_dir})

# gdb loads a script by itself where it bears the name of the shared library, below gdb's own folder.
if(BUILD_SHARED_LIBS)
  install(FILES tools/gdb/varnik-gdb.py DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR}
    RENAME $<TARGET_FILE_NAME:varnik>-gdb.py)
else()
  install(FILES tools/gdb/varnik-gdb.py DESTINATION ${CMAKE_INSTALL_DATADIR}/varnik)
endif()
