#include "tools/vkbuf/Failure.h"

#include <cstdio>

void say(const std::string& line) {
  std::fprintf(stderr, "vkbuf: %s\n", line.c_str());
}

void say(const Failure& failure) {
  say(std::string(failure.what()));
  if (!failure.hint.empty()) std::fprintf(stderr, "hint: %s\n", failure.hint.c_str());
}
