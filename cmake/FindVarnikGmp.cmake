# GMP ships no CMake package: the imported target varnik::gmp from its header and library. Installed beside the package
# configuration, because those who link the static library need it too.
include(FindPackageHandleStandardArgs)
find_path(VARNIK_GMP_INCLUDE gmp.h)
find_library(VARNIK_GMP_LIBRARY gmp)
mark_as_advanced(VARNIK_GMP_INCLUDE VARNIK_GMP_LIBRARY)
find_package_handle_standard_args(VarnikGmp REQUIRED_VARS VARNIK_GMP_LIBRARY VARNIK_GMP_INCLUDE)
if(VarnikGmp_FOUND AND NOT TARGET varnik::gmp)
  add_library(varnik::gmp UNKNOWN IMPORTED)
  set_target_properties(varnik::gmp PROPERTIES
    IMPORTED_LOCATION "${VARNIK_GMP_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${VARNIK_GMP_INCLUDE}")
endif()
