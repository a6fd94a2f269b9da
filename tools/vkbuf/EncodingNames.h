// What the tool tells about the encodings beside what the library does with them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "varnik/services/memory/Types.h"

/// Every name that encodes and decodes, other spellings included.
std::vector<std::string> encodingNames();

/// The characters that can stand in a text that decodes under an id, white space not counted. Empty where any can.
std::string_view alphabetOf(s32 id);
