// Filling a byte container, piece by piece and byte by byte: into reserved space, and while it grows.
#include "bench/Bench.h"
#include "varnik/buffer/DataBuffer.h"

namespace {

struct Ours {
  DataBuffer bytes;
  void reserve(std::size_t n) { bytes.ensureBuffer(static_cast<u32>(n)); }
  void append(const std::uint8_t* p, std::size_t n) { bytes.append(p, static_cast<u32>(n)); }
  void push(std::uint8_t b) { bytes.appendChar(b); }
  void empty() { bytes.clear(); }
};

struct Vector {
  std::vector<std::uint8_t> bytes;
  void reserve(std::size_t n) { bytes.reserve(n); }
  void append(const std::uint8_t* p, std::size_t n) { bytes.insert(bytes.end(), p, p + n); }
  void push(std::uint8_t b) { bytes.push_back(b); }
  void empty() { bytes.clear(); }
};

struct String {
  std::string bytes;
  void reserve(std::size_t n) { bytes.reserve(n); }
  void append(const std::uint8_t* p, std::size_t n) { bytes.append(reinterpret_cast<const char*>(p), n); }
  void push(std::uint8_t b) { bytes.push_back(static_cast<char>(b)); }
  void empty() { bytes.clear(); }
};

template <class Container>
void fill(Container& container, std::size_t total, const std::uint8_t* piece) {
  constexpr std::size_t kPiece = 16;
  for (std::size_t n = 0; n < total; n += kPiece) container.append(piece, kPiece);
}

template <class Container>
void fillByByte(Container& container, std::size_t total) {
  for (std::size_t n = 0; n < total; ++n) container.push(static_cast<std::uint8_t>(n));
}

template <class Container>
void addAll(const std::string& peer) {
  static const auto kPiece = bench::randomBytes(16);
  for (const std::size_t total : {std::size_t{4} << 10, std::size_t{1} << 20}) {
    // The space is reserved once and used again, so that appending is all that is measured.
    bench::add("reserved_append16", total, peer, [total, c = Container()]() mutable -> Container& {
      c.reserve(total);
      c.empty();
      fill(c, total, kPiece.data());
      return c;
    });
    bench::add("reserved_char", total, peer, [total, c = Container()]() mutable -> Container& {
      c.reserve(total);
      c.empty();
      fillByByte(c, total);
      return c;
    });
    bench::add("growing_append16", total, peer, [total] {
      Container c;
      fill(c, total, kPiece.data());
      return c;
    });
    bench::add("growing_char", total, peer, [total] {
      Container c;
      fillByByte(c, total);
      return c;
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  addAll<Ours>("varnik");
  addAll<Vector>("std::vector");
  addAll<String>("std::string");
  return bench::run(argc, argv);
}
