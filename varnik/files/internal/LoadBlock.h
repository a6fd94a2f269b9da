#pragma once

#include "varnik/services/memory/Types.h"

class DataBuffer;
class FileHandle;
class LogBase;
class XString;

namespace vk_files {

/// Makes `out` hold the next `n` bytes of `file`, in a block with `spare` bytes more that are zero. False, each failure
/// logged: `out` as it was when memory runs out; when the read fails or ends early, its size is `n` all the same and
/// what was not read is zero. REQUIRES: `n` + `spare` fits in 32 bits.
bool loadBlock(FileHandle& file, XString& path, u32 n, u32 spare, DataBuffer& out, LogBase& log);

}  // namespace vk_files
