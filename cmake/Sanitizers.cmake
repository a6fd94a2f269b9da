# VARNIK_SANITIZE: a list for -fsanitize=, such as "address,undefined" or "thread". Empty in released builds.
set(VARNIK_SANITIZE "" CACHE STRING "Sanitizers to build with")
# Calls on destroyed objects are part of the contract (they report and fail), so their vptr is not checked.
function(varnik_sanitizers target)
  if(VARNIK_SANITIZE)
    target_compile_options(${target} PUBLIC -fsanitize=${VARNIK_SANITIZE} -fno-sanitize-recover=all -fno-sanitize=vptr
      -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${VARNIK_SANITIZE})
    if(VARNIK_SANITIZE MATCHES integer) # a shift that drops bits is no fault
      target_compile_options(${target} PUBLIC -fno-sanitize=unsigned-shift-base
        -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/wraps.txt)
    endif()
  endif()
endfunction()
