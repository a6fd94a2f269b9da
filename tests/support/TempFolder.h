// A folder of a test's own, and files in it.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

/// A new empty folder that is removed with all that is in it.
class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "varnik-test-XXXXXX").string();
    if (mkdtemp(name.data())) path_ = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(TempFolder&&) = delete;

  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }
  const std::string& path() const { return path_; }
  /// How many entries the folder has.
  std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::string path_;
};

/// Writes a file and returns its path.
inline const std::string& writeFile(const std::string& path, std::string_view content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(content.data(), std::streamsize(content.size()));
  return path;
}

/// The content of a file; "(none)" where there is none.
inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(none)";
  return {std::istreambuf_iterator<char>(file), {}};
}
