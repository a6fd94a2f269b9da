# The Debian packages, made by scripts/package: the library, what programs are built with, and the tool.
set(soname_package libvarnik${PROJECT_VERSION_MAJOR})
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME varnik)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "Varnik maintainers <maintainers@varnik.dev>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(exactly "= ${PROJECT_VERSION}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${soname_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "growable byte buffer with encodings, charsets and secrets
One byte buffer, DataBuffer, with what data handling, text encodings and
cryptography need on raw bytes: base64 and thirty other encodings by name,
conversion between charsets, search and replace, block-cipher padding,
files, and holders that keep secrets encrypted in memory.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvarnik-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${soname_package} (${exactly})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "vkbuf, pkgconf")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "headers of the varnik byte buffer library
What programs that use varnik are built with: the headers, the CMake
package, the pkg-config file, and printers for gdb.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME vkbuf)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}) # where the library is that has no package yet
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${soname_package} (${exactly})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "encodes, decodes, converts and mends bytes
A command for each thing that people do with the bytes of mail, documents
and records: encodings by name both ways, charsets detected and converted,
hex dumps written and read, text cleaned up, files split and joined.")

# Files that belong to the packages alone. Debian wants its changelog and the manual compressed, always to the same bytes.
configure_file(cmake/debian/changelog.in changelog @ONLY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(doc share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  install(FILES cmake/debian/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog DESTINATION ${doc} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/Compress.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/DropScripts.cmake)
include(CPack)
