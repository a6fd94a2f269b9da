#include "tests/faults/Operations.h"

std::vector<faults::Operation> faults::bufferOperations() {
  return {
      op("append", [](Scene& s) { return s.buffer.append(s.source); }),
      op("append itself", [](Scene& s) { return s.buffer.append(s.buffer); }),
      op("append a piece of itself", [](Scene& s) { return s.source.append(s.source.getData2() + 1, 4000); }),
      op("appendStr", [](Scene& s) { return s.buffer.appendStr("some text"); }),
      op("append a string", [](Scene& s) { return s.buffer.append(s.text); }),
      op("appendRange", [](Scene& s) { return s.buffer.appendRange(s.source, 7, 90000); }),
      op("appendRange2", [](Scene& s) { return s.buffer.appendRange2(s.source, 7, 900); }),
      op("appendReverse", [](Scene& s) { return s.buffer.appendReverse(s.source.getData2(), 5000, true); }),
      op("appendReverse itself", [](Scene& s) { return s.buffer.appendReverse(s.buffer.getData2(), 5, true); }),
      op("appendChar", [](Scene& s) { return s.buffer.appendChar('x'); }),
      op("appendChar2", [](Scene& s) { return s.buffer.appendChar2('x', 'y'); }),
      op("appendCharN", [](Scene& s) { return s.buffer.appendCharN('x', 70000); }),
      op("appendView", [](Scene& s) { return s.buffer.appendView(s.view); }),
      op("prepend", [](Scene& s) { return s.buffer.prepend(s.source.getData2(), 5000); }),
      op("prepend itself", [](Scene& s) { return s.buffer.prepend(s.buffer.getData2(), s.buffer.size()); }),
      op("insertAt", [](Scene& s) { return s.buffer.insertAt(3, s.source.getData2(), 5000); }),
      op("insertAt itself", [](Scene& s) { return s.buffer.insertAt(3, s.buffer.getData2(), s.buffer.size()); }),
      op("resize", [](Scene& s) { return s.buffer.resize(30000); }),
      op("exclusiveOr", [](Scene& s) { return s.buffer.exclusiveOr(s.source, s.source); }),
      op("ensureBuffer", [](Scene& s) { return s.buffer.ensureBuffer(50000); }),
      op("reallocate", [](Scene& s) { return s.buffer.reallocate(50000); }),
      op("expandBuffer", [](Scene& s) { return s.buffer.expandBuffer(50000); }),
      op("getAppendPtr", [](Scene& s) { return s.buffer.getAppendPtr(50000) != nullptr; }),
      op("minimizeMemoryUsage2",
         [](Scene& s) { return s.buffer.ensureBuffer(500) && s.buffer.minimizeMemoryUsage2(10); }),
      op("createNewObject",
         [](Scene& s) {
           const std::unique_ptr<DataBuffer> made(DataBuffer::createNewObject());
           return made && s.buffer.append("made", 4);
         }),
      emptying("copy constructor", [](Scene& s) { s.buffer = DataBuffer(s.source); }),
      emptying("copy assignment", [](Scene& s) { s.buffer = s.source; }),
      emptying("copy", [](Scene& s) { s.buffer.copy(s.source); }),
      emptying("copyData", [](Scene& s) { s.buffer.copyData(s.source.getData2(), 99); }),
      emptying("copyData itself", [](Scene& s) { s.buffer.copyData(s.buffer.getData2(), s.buffer.size()); }),
      op("getDataSafe4", [](Scene& s) { return s.buffer.getDataSafe4() != nullptr; }),
      op("prepForSbTake", [](Scene& s) { return s.buffer.prepForSbTake(); }),
      extending("fields",
                [](Scene& s) {
                  return s.buffer.appendUtf16_le("a", 2) && s.buffer.append_u16(1) && s.buffer.appendUint32_be(2) &&
                         s.buffer.appendInt64_le(3) && s.buffer.appendDouble_le(4);
                }),
      parsing("parseData", [](Scene& s, u32& cursor) { return s.source.parseData(cursor, 900, s.buffer); }),
      parsing("parseString", [](Scene& s, u32& cursor) { return s.source.parseString(cursor, 900, s.text); }),
      op("view append", [](Scene& s) { return s.view.append(s.source); }),
      op("view takeBytes", [](Scene& s) { return s.view.takeBytes(4, s.buffer); }),
      random(op("appendRandomBytes", [](Scene& s) { return s.buffer.appendRandomBytes(700); })),
  };
}

std::vector<faults::Operation> faults::stringOperations() {
  return {
      op("append", [](Scene& s) { return s.text.append("some text, longer than what fits into a new string"); }),
      extending("append itself", [](Scene& s) { return s.text.append(s.text) && s.text.append(s.text); }),
      op("append bytes", [](Scene& s) { return s.text.append(s.source); }),
      op("appendCharN", [](Scene& s) { return s.text.appendCharN('x', 9000); }),
      op("getAppendPtr", [](Scene& s) { return s.text.getAppendPtr(9000) != nullptr; }),
      emptying("copy", [](Scene& s) { s.text = StringBuffer("a text that is copied"); }),
      op("replaceAllOccurances", [](Scene& s) { return s.text.replaceAllOccurances("e", "a much longer one"); }),
      emptying("takeString", [](Scene& s) { s.buffer.takeString(s.text); }),
      emptying("setFromUtf8", [](Scene& s) { return s.wide.setFromUtf8("caf\xC3\xA9, and a text that is longer"); }),
      emptying("setFromUtf16N_xe",
               [](Scene& s) { return s.wide.setFromUtf16N_xe(reinterpret_cast<const u8*>(u"caf\u00e9"), 4); }),
      extending("getUtf16_le", [](Scene& s) { return s.wide.getUtf16_le(true, s.buffer); }),
      op("getUtf16_xe", [](Scene& s) { return s.wide.getUtf16_xe() != nullptr; }),
      emptying("copy of wide text",
               [](Scene& s) {
                 XString copied(s.wide);
                 s.wide = copied;
               }),
  };
}
