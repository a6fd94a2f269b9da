// Hex text appended to a string, in either case.
#pragma once

#include "varnik/services/memory/Types.h"

class StringBuffer;

/// Appends two digits a byte, with `:` between bytes when `colons`. Nothing tells when memory runs out: what fits is
/// appended. `data` does not lie in the storage of `out`.
void vk_appendHex(const u8* data, u32 n, bool lower, bool colons, StringBuffer& out);
