# VARNIK_HARDEN: what Debian builds its packages with, and no path of the machine that built in what it built.
include(CheckPIESupported)
check_pie_supported()
function(varnik_hardening target)
  if(VARNIK_HARDEN)
    target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong
      -Wformat -Werror=format-security -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
      target_compile_options(${target} PRIVATE -fcf-protection)
    endif()
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endif()
endfunction()
