#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "tests/faults/Operations.h"

namespace faults {
namespace {

/// A folder that goes when the program ends, with a file in it: 10 as a header's length, then 3000 bytes.
class Folder {
 public:
  Folder() : path_(std::filesystem::temp_directory_path() / ("varnik-faults-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
    const std::string content = std::string("\x0A\0\0\0", 4) + randomBytes(3000);
    std::FILE* const file = std::fopen(name("file").c_str(), "wb");
    std::fwrite(content.data(), 1, content.size(), file);
    std::fclose(file);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string name(const char* file) const { return path_ / file; }
  std::size_t numFiles() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

template <class Load>
Operation loading(std::string what, std::string path, Load load) {
  return emptying(std::move(what), [path, load](Scene& s) {
    LogNull log;
    return load(s, path.c_str(), log);
  });
}

}  // namespace

std::vector<Operation> fileOperations() {
  static const Folder folder;
  const std::string file = folder.name("file"), saved = folder.name("saved");
  return {
      loading("loadFileUtf8", file,
              [](Scene& s, const char* path, LogBase& log) { return s.buffer.loadFileUtf8(path, &log); }),
      loading("loadFileX", file,
              [](Scene& s, const char* path, LogBase& log) {
                XString name;
                return name.setFromUtf8(path) && s.buffer.loadFileX(name, log);
              }),
      loading("loadFileWithHeaderUtf8", file,
              [](Scene& s, const char* path, LogBase& log) {
                DataBuffer header;
                return s.buffer.loadFileWithHeaderUtf8(path, header, 100, log) && header.size() == 6;
              }),
      alwaysTrue(loading(
          "loadCacheHeaderUtf8", file,
          [](Scene& s, const char* path, LogBase& log) { return s.buffer.loadCacheHeaderUtf8(path, 100, log); })),
      loading("loadFileChunk", file,
              [](Scene& s, const char* path, LogBase& log) { return s.buffer.loadFileChunk(path, 100, 900, log); }),
      loading("getCurrentDir", file,
              [](Scene& s, const char*, LogBase& log) {
                _vkFileSys::getCurrentDir(s.wide, &log);
                return !s.wide.isEmpty();
              }),
      emptying("save and load",
               [saved](Scene& s) {
                 std::remove(saved.c_str());
                 if (!s.source.db_saveToFileUtf8(saved.c_str(), nullptr)) return access(saved.c_str(), F_OK) == 0;
                 return s.buffer.loadFileUtf8(saved.c_str(), nullptr);
               }),
  };
}

}  // namespace faults
