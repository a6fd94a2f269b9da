# The warnings that our own code keeps clear of, with GCC and Clang.
function(varnik_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${VARNIK_WERROR}>:-Werror>)
endfunction()
