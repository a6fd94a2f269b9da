#include "tools/vkbuf/Failure.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/vkbuf/Progress.h"

namespace {

Color color = Color::whereSeen;

bool isColored() {
  if (color != Color::whereSeen) return color == Color::always;
  const char* const none = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) && (!none || *none == 0) && (!terminal || std::strcmp(terminal, "dumb") != 0);
}

}  // namespace

void setColor(Color wanted) {
  color = wanted;
}

void say(const std::string& line) {
  Progress::clearLine();
  std::fprintf(stderr, "vkbuf: %s\n", line.c_str());
}

void say(const Failure& failure) {
  Progress::clearLine();
  std::fprintf(stderr, isColored() ? "\033[31mvkbuf:\033[0m %s\n" : "vkbuf: %s\n", failure.what());
  if (!failure.hint.empty()) std::fprintf(stderr, "hint: %s\n", failure.hint.c_str());
}
