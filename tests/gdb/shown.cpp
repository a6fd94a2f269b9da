// What the gdb test looks at: objects in every state that the printers tell apart. Each comes with what gdb must show.
#include <new>

#include "varnik/Varnik.h"

void look() {}

int main() {
  LogNull log;
  DataBuffer none;     // DataBuffer{size 0 of 0, no storage}
  DataBuffer owned;    // DataBuffer{size 5 of 20000, owned} 68 65 6c 6c 6f "hello"
  DataBuffer emptied;  // DataBuffer{size 0 of 64, owned}
  // clang-format off
  DataBuffer large;  // DataBuffer{size 40 of 10040, owned} 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e 2e ... "................................" ...
  // clang-format on
  DataBuffer borrowed;  // DataBuffer{size 3 of 3, borrowed} 00 1b 41 "..A"
  DataBuffer secure;    // DataBuffer{secure: 11 bytes hidden}
  owned.appendStr("hello");
  emptied.appendChar('x');
  emptied.clear();
  large.appendCharN('.', 40);
  u8 block[] = {0, 0x1B, 'A'};
  borrowed.borrowData(block, 3);
  secure.appendStr("open sesame");
  secure.secure = 1;

  alignas(DataBuffer) unsigned char place[sizeof(DataBuffer)];
  auto* dead = new (place) DataBuffer;
  dead->appendStr("gone");
  dead->~DataBuffer();
  DataBuffer& destroyed = *dead;  // DataBuffer{destroyed}

  DataBufferView view;  // DataBufferView{3 bytes, 2 dead before them} 63 64 65 "cde"
  view.append("abcde", 5);
  view.consume(2);

  const StringBuffer text("a text");     // StringBuffer{size 6} "a text"
  const StringBuffer noText;             // StringBuffer{size 0} ""
  StringBuffer password("open sesame");  // StringBuffer{secure: 11 characters hidden}
  password.setSecure(true);
  XString unicode;  // XString: StringBuffer{size 3} "abc"
  XString hidden;   // XString{secure: hidden}
  if (!unicode.setFromUtf8("abc") || !hidden.setFromUtf8("open sesame")) return 1;
  hidden.setSecureX(true);

  DataBuffer key;
  SecretData noSecret;  // SecretData{empty}
  SecretString secret;  // SecretString{39 bytes encrypted}
  if (!secret.setSecString(key, "open sesame", log)) return 1;

  look();
  return none.size() != 0 || destroyed.size() != 0 || noText.getSize() != 0 || !noSecret.isEmpty() || text.isEmpty();
}
