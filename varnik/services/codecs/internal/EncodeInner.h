// Encoders that the dispatcher calls beside the public ones. Each appends to `out`; false when memory runs out.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class StringBuffer;

/// The decimal values of the bytes, commas between them. What was appended before a failure stays.
VARNIK_API bool vk_encodeDecList(const u8* data, u32 n, StringBuffer& out);  // DecList.cpp
/// JSON string escapes, as `StringBuffer::jsonEscape` writes them, straight from the bytes.
VARNIK_API bool vk_encodeJson(const u8* data, u32 n, StringBuffer& out);  // services/strings/JsonText.cpp
