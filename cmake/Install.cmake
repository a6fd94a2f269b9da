# What `cmake --install` puts where: the library, its headers by the tree's own paths, and the CMake package.
include(CMakePackageConfigHelpers)
install(TARGETS varnik EXPORT varnikTargets)
install(DIRECTORY varnik DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)
