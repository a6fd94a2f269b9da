# What `cmake --install` puts where: the library, its headers by the tree's own paths, the tool, the CMake package
# (`find_package(varnik)`, target varnik::varnik) and the pkg-config file. All of it may be moved to another prefix.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/varnik)

install(TARGETS varnik EXPORT varnikTargets)
if(TARGET vkbuf)
  if(BUILD_SHARED_LIBS AND NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH libdir_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(vkbuf PROPERTIES INSTALL_RPATH "$ORIGIN/${libdir_from_bin}")
  endif()
  install(TARGETS vkbuf EXPORT varnikTargets)
endif()
# Folders without a public header would be made too, empty, so they are named.
install(DIRECTORY varnik DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h"
  PATTERN "internal" EXCLUDE
  REGEX "/varnik/(encoding|files|padding|search|simd|text)$" EXCLUDE)

install(EXPORT varnikTargets NAMESPACE varnik:: DESTINATION ${package_dir})
configure_package_config_file(cmake/varnikConfig.cmake.in varnikConfig.cmake INSTALL_DESTINATION ${package_dir})
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
