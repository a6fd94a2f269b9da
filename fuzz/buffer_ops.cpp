// A program of buffer operations, run on two buffers and on two plain models, with sources inside the buffers' own
// storage, borrowed blocks and refused allocations. Content and capacity agree after every step.
#include <algorithm>

#include "fuzz/Fuzz.h"
#include "tests/support/Allocations.h"

namespace {

/// What a buffer should be.
struct Model {
  std::string bytes;
  u32 capacity = 0;
  bool borrowed = false;

  u32 size() const { return countOf(bytes); }
  void growTo(u32 to) {
    if (to > capacity) capacity = to, borrowed = false;
  }
  void grow(u32 n, u32 by) {
    if (size() + n > capacity) growTo(size() + by);
  }
  void growBulk(u32 n) {
    const u32 s = size();
    grow(n, std::max(n, s >= 100000 ? 100000u : s >= 50000 ? 50000u : 20000u));
  }
  void growChars(u32 k) { grow(k, size() <= 63 ? 64 : size() <= 255 ? 256 : size() <= 1023 ? 1024 : 10000); }
  void insert(u32 pos, const std::string& piece) { bytes.insert(std::min(pos, size()), piece); }
  void clear() {
    bytes.clear();
    if (borrowed) capacity = 0, borrowed = false;
  }
};

class Program {
 public:
  explicit Program(Choices in) : in_(in) {}
  void run() {
    for (u32 i = 0; i < 300 && in_.any(); ++i) {
      const u8 how = in_.byte();
      a_ = how % 2;
      refused_ = how / 2 % 4 == 3 ? 1 + how / 8 % 2 : 0;
      forGood_ = how / 16 % 2 != 0;
      step(in_.below(26));
      for (u32 j = 0; j < 2; ++j) {
        CHECK(real_[j].checkValidityDb() && isModel(j, i % 16 == 15));
        CHECK(real_[j].getBufSize() == model_[j].capacity);
      }
    }
    CHECK(isModel(0, true) && isModel(1, true));
  }

 private:
  bool isModel(u32 j, bool inFull) const {
    const std::string_view is = viewOf(real_[j]), should = model_[j].bytes;
    if (inFull || should.size() < 2000) return is == should;
    return is.size() == should.size() && is.substr(0, 1000) == should.substr(0, 1000) &&
           is.substr(is.size() - 1000) == should.substr(should.size() - 1000);
  }

  /// Runs an operation, allocations refused or not. Where it says that it was done the model follows by `change`; else
  /// an allocation must have been refused, and the model follows by `fail`.
  template <class Real, class Change, class Fail>
  void apply(Real real, Change change, Fail fail) {
    bool done, struck;
    {
      const faults::FailAllocation refusal(refused_, forGood_);
      done = real();
      struck = refusal.struck();
    }
    CHECK(done || struck);
    done ? change() : fail();
    if (!struck || !done) return;
    CHECK(own().getBufSize() >= model().size());  // a smaller block, which it asked for then
    model().capacity = own().getBufSize();
  }
  template <class Real, class Change>
  void apply(Real real, Change change) {
    apply(real, change, [] {});
  }

  /// Mostly small: a large buffer is slow to compare.
  u32 chooseSize() { return in_.byte() % 4 == 0 ? in_.below(60000) : in_.below(300); }

  /// A piece of the input, perhaps many times over, or of the buffer's own storage.
  std::string_view choosePiece() {
    const u8 how = in_.byte();
    if (how % 3 == 0) {
      const u32 start = in_.below(model().size() + 1);
      return viewOf(own()).substr(start, in_.below(model().size() - start + 1));
    }
    const std::string_view some = in_.bytes(how / 8);
    room_.clear();
    for (u32 i = 0; i < (how % 16 == 2 ? 700u : 1u); ++i) room_ += some;
    return room_;
  }

  void step(u32 code) {
    if (model().size() > 150'000) code = 14;  // past two steps of the growth
    if (code < 6) return insert(code);
    if (code < 10) return addChars(code, chooseSize(), in_.byte());
    if (code < 18) return remove(code, in_.below(model().size() + 3), in_.below(model().size() + 2));
    exchange(code);
  }

  void insert(u32 code) {
    const std::string_view piece = choosePiece();
    const std::string copied(piece);
    const u8* const p = bytesOf(piece);
    const u32 n = countOf(piece), pos = in_.below(model().size() + 2);
    DataBuffer& r = own();
    Model& m = model();
    const auto append = [&] { m.growBulk(n), m.insert(m.size(), copied); };
    const auto prepend = [&] { m.growTo(n ? m.size() + n : 0), m.insert(0, copied); };
    switch (code) {
      case 0:
        return apply([&] { return r.append(p, n); }, append);
      case 1:
        return apply([&] { return r.appendReverse(p, n, false); }, append);
      case 2:
        return apply([&] { return r.appendReverse(p, n, true); },
                     [&] { m.growBulk(n), m.bytes += std::string(copied.rbegin(), copied.rend()); });
      case 3:
        return apply([&] { return r.prepend(p, n); }, prepend);
      case 4:
        if (pos == 0) return apply([&] { return r.insertAt(pos, p, n); }, prepend);
        return apply([&] { return r.insertAt(pos, p, n); }, [&] { m.growBulk(n), m.insert(pos, copied); });
      default:
        apply([&] { return r.copyData(p, n), r.size() == n; }, [&] { m = {copied, n}; }, [&] { m = Model(); });
    }
  }

  void addChars(u32 code, u32 n, u8 c) {
    DataBuffer& r = own();
    Model& m = model();
    const std::string two(2, static_cast<char>(c));
    const u32 missing = n - std::min(n, m.size());
    switch (code) {
      case 6:
        return apply([&] { return r.appendChar(c); }, [&] { m.growChars(1), m.bytes += two[0]; });
      case 7:
        return apply([&] { return r.appendChar2(c, c); }, [&] { m.growChars(2), m.bytes += two; });
      case 8:
        return apply([&] { return r.appendCharN(c, n); }, [&] { m.grow(n, n + 10000), m.bytes.append(n, two[0]); });
      default:
        apply([&] { return r.resize(n); }, [&] { m.grow(missing, missing + 10000), m.bytes.resize(n); });
    }
  }

  void remove(u32 code, u32 n, u32 start) {
    LogNull log;
    DataBuffer& r = own();
    Model& m = model();
    const u32 most = std::min(n, m.size());
    switch (code) {
      case 10:
        r.removeHead(n);
        m.bytes.erase(0, most);
        if (m.bytes.empty()) m.clear();
        return;
      case 11:
        CHECK(r.removeChunk(static_cast<s32>(start), static_cast<s32>(n)));
        if (start < m.size()) m.bytes.erase(start, n);
        return;
      case 12:
        return r.shorten(n), m.bytes.resize(m.size() - most);
      case 13:
        return r.slideTailToFront(n, log), static_cast<void>(n ? m.bytes.erase(0, m.size() - most) : m.bytes);
      case 14:
        return r.clear(), m.clear();
      case 15:
        return r.clearWithDeallocate(), void(m = Model());
      case 16:
        return r.secureClear(), m.bytes.clear();
      default: {
        const u32 lent = std::min<u32>(start + 1, sizeof lent_[0]);
        const bool isTaken = real_[1 - a_].getData2() == lent_[0];  // by the other buffer
        r.borrowData(std::fill_n(lent_[isTaken], lent, u8{'L'}) - lent, lent);
        m = {std::string(lent, 'L'), lent, true};
      }
    }
  }

  void exchange(u32 code) {
    DataBuffer &r = own(), &other = real_[1 - a_];
    Model &m = model(), &o = model_[1 - a_], before = m;
    const u32 n = chooseSize();
    switch (code) {
      case 18:
        return r.takeData(other), o.bytes.empty() ? m.clear() : void((m = o, o = Model()));
      case 19:
        return r.takeData_kb(other), m = o, void(o = {"", before.borrowed ? 0 : before.capacity});
      case 20:
        return r.swapData(other), std::swap(m, o);
      case 21:
        return apply([&] { return r.copy(other), r.getBufSize() == o.capacity; },
                     [&] {
                       m = {o.bytes, o.capacity};
                     },
                     [&] { m = Model(); });
      case 22:
        if (m.size() != o.size()) {
          CHECK(!r.exclusiveOr(r, other));
          return;
        }
        return apply([&] { return r.exclusiveOr(r, other); },
                     [&] {
                       for (u32 i = 0; i < m.size(); ++i) m.bytes[i] = static_cast<char>(m.bytes[i] ^ o.bytes[i]);
                       if (m.bytes.empty()) m.clear();
                     });
      case 23:
        return apply([&] { return r.append(other); }, [&] { m.growBulk(o.size()), m.bytes += o.bytes; });
      case 24:
        return apply([&] { return r.minimizeMemoryUsage(); },
                     [&] {
                       if (m.capacity > m.size() + 4) m.capacity = m.size() + 4, m.borrowed = false;
                     });
      default:
        apply([&] { return r.getAppendPtr(n) != nullptr; }, [&] { m.growTo(m.size() + n + 1); });
    }
  }

  DataBuffer& own() { return real_[a_]; }
  Model& model() { return model_[a_]; }

  Choices in_;
  DataBuffer real_[2];
  Model model_[2];
  u32 a_ = 0;        // the buffer that a step works on
  u32 refused_ = 0;  // which of its allocations is refused; 0 is none
  bool forGood_ = false;
  std::string room_;
  u8 lent_[2][64] = {};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t n) {
  Program(Choices(data, n)).run();
  return 0;
}
