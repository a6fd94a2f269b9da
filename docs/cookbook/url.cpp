// How do I put any text into a URL, and take it out again?
//
// `url` escapes all but the unreserved characters of RFC 3986, so the result may stand in a path or a query. Decoding
// leaves `+` as it is: turn it into a blank first where a form's rules apply.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer value;
  value.appendStr("caf\xC3\xA9 & cr\xC3\xA8me, 100%");
  StringBuffer text;
  if (!value.encodeDB("url", text)) return 1;
  std::printf("?q=%s\n", text.getString());

  DataBuffer form;
  form.appendStr("black+and+white%3F");
  form.replaceChar('+', ' ');
  form.appendChar(0);
  DataBuffer back;
  if (!back.appendEncoded(reinterpret_cast<const char*>(form.getData2()), "url")) return 1;
  std::printf("%.*s\n", static_cast<int>(back.size()), reinterpret_cast<const char*>(back.getData2()));
  return 0;
}

// Prints:
//   ?q=caf%C3%A9%20%26%20cr%C3%A8me%2C%20100%25
//   black and white?
