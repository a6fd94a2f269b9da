#include "tests/faults/Operations.h"

std::vector<faults::Operation> faults::fileOperations() {
  static const TempFolder folder;
  static const std::string saved = folder / "saved";
  // 10 as a header's length, then 3000 bytes.
  static const std::string file = writeFile(folder / "file", std::string("\x0A\0\0\0", 4) + randomBytes(3000));
  static const char* const path = file.c_str();
  return {
      emptying("loadFileUtf8", [](Scene& s) { return s.buffer.loadFileUtf8(path, &s.log); }),
      emptying("loadFileX",
               [](Scene& s) {
                 XString name;
                 return name.setFromUtf8(path) && s.buffer.loadFileX(name, s.log);
               }),
      emptying("loadFileWithHeaderUtf8",
               [](Scene& s) {
                 DataBuffer header;
                 return s.buffer.loadFileWithHeaderUtf8(path, header, 100, s.log) && header.size() == 6;
               }),
      alwaysTrue(
          emptying("loadCacheHeaderUtf8", [](Scene& s) { return s.buffer.loadCacheHeaderUtf8(path, 100, s.log); })),
      emptying("loadFileChunk", [](Scene& s) { return s.buffer.loadFileChunk(path, 100, 900, s.log); }),
      emptying("getCurrentDir", [](Scene& s) { return _vkFileSys::getCurrentDir(s.wide, &s.log), !s.wide.isEmpty(); }),
      emptying("save and load",
               [](Scene& s) {
                 std::remove(saved.c_str());
                 if (!s.source.db_saveToFileUtf8(saved.c_str(), nullptr)) return access(saved.c_str(), F_OK) == 0;
                 return s.buffer.loadFileUtf8(saved.c_str(), nullptr);
               }),
  };
}
