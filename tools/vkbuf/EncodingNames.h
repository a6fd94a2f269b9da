// What the tool tells about the encodings beside what the library does with them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "varnik/services/codecs/internal/EncodingTable.h"
#include "varnik/services/memory/Types.h"

/// The cells of a row of a table.
using Cells = std::vector<std::string>;

/// The padding schemes as a table, its headings first.
std::vector<Cells> paddingRows();  // Padding.cpp

/// Every name that encodes and decodes, other spellings included.
std::vector<std::string> encodingNames();

/// What a name stands for; a name that is none ends the command.
vk_codec::TextCodec codecOf(const std::string& name);

/// The characters that can stand in a text that decodes under an id, white space not counted. Empty where any can.
std::string_view alphabetOf(s32 id);
