# GMP ships no CMake package: an imported target from its header and library.
find_path(VARNIK_GMP_INCLUDE gmp.h REQUIRED)
find_library(VARNIK_GMP_LIBRARY gmp REQUIRED)
mark_as_advanced(VARNIK_GMP_INCLUDE VARNIK_GMP_LIBRARY)
add_library(varnik_gmp UNKNOWN IMPORTED)
set_target_properties(varnik_gmp PROPERTIES
  IMPORTED_LOCATION ${VARNIK_GMP_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${VARNIK_GMP_INCLUDE})
