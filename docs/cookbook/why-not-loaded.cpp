// How do I learn why a file could not be loaded?
//
// Operations that can fail in ways worth telling take a logger. `LogText` keeps what it is told, indented by context; a
// class of your own derived from `LogBase` sends it wherever you want.
#include <cstdio>

#include "varnik/Varnik.h"

class ErrorsToStdout : public LogBase {
 public:
  void LogError(const char* text) override { std::printf("error: %s\n", text); }
};

int main() {
  DataBuffer file;
  LogText log;
  if (!file.loadFileUtf8("missing.txt", &log)) std::printf("%u error\n%s--\n", log.numErrors(), log.getText());

  ErrorsToStdout direct;
  if (!file.loadFileUtf8("missing.txt", &direct)) return 0;
  return 1;
}

// Prints:
//   1 error
//   loadFileX:
//     path: missing.txt
//     reason: No such file or directory
//     error: the file cannot be opened
//   --
//   error: the file cannot be opened
