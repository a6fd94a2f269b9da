# Writes what the tool tells about itself: cmake -DTOOL=vkbuf -DINTO=share -P Pages.cmake
function(write_page file)
  execute_process(COMMAND ${TOOL} ${ARGN} -o ${INTO}/${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
file(MAKE_DIRECTORY ${INTO}/man/man1 ${INTO}/bash-completion/completions ${INTO}/zsh/vendor-completions
  ${INTO}/fish/vendor_completions.d)
write_page(bash-completion/completions/vkbuf completion bash)
write_page(zsh/vendor-completions/_vkbuf completion zsh)
write_page(fish/vendor_completions.d/vkbuf.fish completion fish)
write_page(man/man1/vkbuf.1 help --man)
# Its own page names those of its commands.
file(STRINGS ${INTO}/man/man1/vkbuf.1 pages REGEX "^\\.BR vkbuf")
foreach(page ${pages})
  string(REGEX REPLACE "^\\.BR vkbuf.-([^ ]+).*" "\\1" command "${page}")
  string(REPLACE "\\" "" command "${command}")
  write_page(man/man1/vkbuf-${command}.1 help --man ${command})
endforeach()
