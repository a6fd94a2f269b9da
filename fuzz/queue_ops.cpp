// A program of queue operations against a deque, with the dead bytes that the thresholds allow.
#include <algorithm>
#include <deque>

#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  Choices in(data, size);
  DataBufferView view, other;
  std::deque<u8> model, otherModel;
  u8 room[256];
  while (in.any()) {
    const u8 code = in.byte() % 9, c = in.byte();
    const u32 n = in.below(40000), held = static_cast<u32>(model.size());
    DataBuffer piece, out;
    switch (code) {
      case 0:
      case 1:
        piece.appendCharN(c, n);
        if (n > 1) piece.getData2()[n / 2] = static_cast<u8>(c + 1);
        CHECK(code == 0 ? view.append(piece) : view.append(piece.getData2(), n));
        model.insert(model.end(), piece.getData2(), piece.getData2() + n);
        break;
      case 2:
        CHECK(view.consume(n));
        model.erase(model.begin(), model.begin() + std::min(n, held));
        break;
      case 3:
        CHECK(view.takeBytes(n, out) == (held != 0 && n <= held));
        CHECK(std::equal(out.getData2(), out.getData2() + out.size(), model.begin()));
        model.erase(model.begin(), model.begin() + out.size());
        break;
      case 4:
        if (!view.takeBytes(c, room)) break;
        CHECK(c <= held && std::equal(room, room + c, model.begin()));
        model.erase(model.begin(), model.begin() + c);
        break;
      case 5:
        view.replaceChar(static_cast<char>(c), static_cast<char>(n));
        std::replace(model.begin(), model.end(), c, static_cast<u8>(n));
        break;
      case 6:
        CHECK(view.compact());
        break;
      case 7:
        view.takeView(other);
        model = std::move(otherModel);
        otherModel.clear();
        break;
      default:
        other.append(&c, 1), otherModel.push_back(c);
    }
    CHECK(view.getViewSize() == model.size() && (view.getViewData() != nullptr) == !model.empty());
    CHECK(out.appendView(view) && out.size() >= model.size());
    CHECK(std::equal(model.begin(), model.end(), view.getViewData()));
    CHECK(view.heapUsage() <= 70000 + 3 * model.size() + 2'000'000);
    if (model.size() > 500'000) view.clear(), model.clear();
  }
  return 0;
}
