// Runs a target over files and folders of inputs, where libFuzzer is not at hand. Arguments that begin with `-` are for
// libFuzzer and skipped.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "varnik/services/memory/Types.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n);

namespace {

int replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string input{std::istreambuf_iterator<char>(in), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const u8*>(input.data()), input.size());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    if (!std::filesystem::is_directory(argv[i])) {
      inputs += replay(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) inputs += replay(entry.path());
  }
  std::cout << inputs << " inputs replayed\n";
  return inputs == 0;
}
