#include "tests/faults/Operations.h"

namespace faults {

std::vector<Operation> textOperations() {
  return {
      op("appendSkipNulls", [](Scene& s) { return s.buffer.appendSkipNulls(s.source.getData2(), 5000); }),
      row("replaceAllOccurances", Leaves::kAnything,  // a result cut short, by its contract
          [](Scene& s) { s.buffer.replaceAllOccurances(bytesOf("e"), 1, s.source.getData2(), 5000); }),
      row("replaceUnicodeString", Leaves::kAnything,
          [](Scene& s) {
            XString find, with;
            if (!find.setFromUtf8("\x68\x65") || !with.setFromUtf8("a longer text")) return;
            s.buffer.replaceUnicodeString(find, with);
          }),
      row("replaceAllOccurancesUtf16NoCase", Leaves::kAnything,
          [](Scene& s) {
            XString find, with;
            if (!find.setFromUtf8("\xE6\x95\xA8") || !with.setFromUtf8("a longer text")) return;
            s.buffer.replaceAllOccurancesUtf16NoCase(find, with);
          }),
  };
}

}  // namespace faults
