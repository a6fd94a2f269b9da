// Where encoded text can be cut so that each part decodes by itself.
#pragma once

#include "varnik/services/memory/Types.h"

/// A cut of a text of which more follows.
struct TextCut {
  u32 length;   // what can be decoded now
  bool closes;  // what stands behind the cut ends the data: padding, the end of a frame
};

/// Finds the last cut of `n` characters in view. The length is 0 where more has to be in view.
using FindCut = TextCut(const u8* text, u32 n);

/// The cuts of the texts that decode under an id; null for those that have to be decoded whole.
FindCut* cutsOf(s32 id);

/// Where the line `begin` of uuencoded text, or the last line in view when there is none, starts.
u32 findUuBegin(const u8* text, u32 n, bool& found);

/// Whether one of the references &#xD; and &#13;, which stand for a carriage return, is at the front of a text.
bool isReturnReference(const u8* text, u32 n);
