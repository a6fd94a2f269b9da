#include "varnik/buffer/Spans.h"

#include <array>
#include <span>

#include "tests/support/Test.h"

namespace {

// A range, as the standard sees it, yet nothing that a span or a view of a text takes without being asked.
template <class B>
constexpr bool kIsRange =
    std::ranges::random_access_range<B>&& std::ranges::common_range<B>&& std::ranges::sized_range<B>;
static_assert(kIsRange<DataBuffer&> && kIsRange<const DataBuffer&> && kIsRange<const StringBuffer&>);
static_assert(std::is_same_v<std::ranges::range_reference_t<DataBuffer&>, u8&>);
static_assert(std::is_same_v<std::ranges::range_reference_t<const DataBuffer&>, const u8&>);

template <class From, class... To>
constexpr bool kConvertsToNone = (!std::is_constructible_v<To, From> && ...);
static_assert(
    kConvertsToNone<DataBuffer&, std::span<u8>, std::span<const u8>, std::string_view, const u8*, const char*>);
static_assert(kConvertsToNone<const StringBuffer&, std::span<const char>, std::string_view, std::string, const char*>);
static_assert(kConvertsToNone<std::span<u8>, DataBuffer, StringBuffer> &&
              kConvertsToNone<std::string, DataBuffer, StringBuffer>);

template <class T>
concept Viewable = requires(T&& t) {
  vk_view(std::forward<T>(t));
};
static_assert(Viewable<DataBuffer&> && Viewable<StringBuffer&>, "views of what lives on");
static_assert(!Viewable<DataBuffer> && !Viewable<const DataBuffer> && !Viewable<StringBuffer>,
              "none of what dies here");

TEST(Spans, ShowTheBytesInUse) {
  DataBuffer b = bufferOf("abc");
  const DataBuffer none;
  const StringBuffer s("t\xC3\xAA"), noText;
  vk_span(b)[1] = 'B';
  EXPECT_TRUE(vk_span(b).data() == b.getData2() && vk_span(std::as_const(b)).size() == 3);
  EXPECT_TRUE(vk_view(b) == "aBc" && vk_view(s) == "t\xC3\xAA");
  EXPECT_TRUE(vk_span(none).empty() && vk_view(none).empty() && vk_view(noText).empty());
}

TEST(Spans, AppendFromWhatIsContiguous) {
  DataBuffer b;
  StringBuffer s("<");
  const std::vector<u8> bytes = {'0', '1'};
  const std::array<std::byte, 1> other = {std::byte{'2'}};
  const u8 plain[] = {'3'};
  EXPECT_TRUE(vk_append(b, bytes) && vk_append(b, other) && vk_append(b, plain));
  EXPECT_TRUE(vk_append(b, "45") && vk_append(b, "6\0"sv) && vk_append(b, std::string("7")));
  EXPECT_TRUE(vk_append(b, std::span<const u8>()) && vk_append(b, std::string_view()));
  EXPECT_TRUE(vk_append(b, vk_span(b).subspan(2, 2)));
  EXPECT_EQ(textOf(b), "0123456\000723"sv);
  EXPECT_TRUE(vk_append(s, "a\0b"sv) && vk_append(s, ">"));
  EXPECT_EQ(textOf(s), "<a\0b>"sv);

  const std::vector<u8> more(30'000);
  const std::string_view tooMuch(vk_view(b).data(), std::size_t{0xFFFFFFFF} + 4);  // 3 bytes if the count were cut
  const faults::FailAllocation fail(1, true);
  EXPECT_FALSE(vk_append(b, tooMuch) || vk_append(s, tooMuch) || vk_append(b, more) ||
               vk_append(s, {reinterpret_cast<const char*>(more.data()), more.size()}));
  EXPECT_EQ(b.size() + s.getSize(), 16u);
}

TEST(Spans, RangesTakeABufferAndAString) {
  DataBuffer b = bufferOf("dbca");
  const StringBuffer s("ABCD");
  std::ranges::sort(b);
  EXPECT_EQ(textOf(b), "abcd");
  std::ranges::reverse(b);
  EXPECT_TRUE(std::ranges::equal(b, "dcba"sv));
  std::ranges::reverse(b);
  for (u8& each : b) each = static_cast<u8>(each - 'a' + 'A');
  EXPECT_TRUE(std::ranges::equal(b, s));
  EXPECT_EQ(std::vector<u8>(begin(b), end(b)).size(), 4u);
  EXPECT_TRUE(*(2 + begin(s)) == 'C' && end(b)[-1] == 'D' && begin(b) <= begin(b) && begin(b) < end(b));
  EXPECT_TRUE(std::ranges::empty(DataBuffer()));
}

}  // namespace
