#include "tests/simd/Forms.h"
#include "varnik/simd/FindBytes.h"

namespace {

// One form against the standard library, data and pattern both ending at unreadable pages.
class Finding {
 public:
  template <class Form>
  void check(const Form& form, const std::string& data, const std::string& pattern) {
    const u8* const at = data_.ending(data);
    const std::size_t want = std::min(data.find(pattern), data.size());
    ASSERT_EQ(form.run(at, countOf(data), pattern_.ending(pattern), countOf(pattern)), want)
        << form.name << ", " << pattern.size() << " in " << data.size() << " bytes";
  }

 private:
  GuardedBytes data_{20'000}, pattern_{20'000};
};

// Small alphabets make false candidates of every kind: they agree in one looked-at byte, in both, in all but one.
TEST(FindBytes, AgreesWithThePlainSearchAmongFalseCandidates) {
  Finding finding;
  for (const auto& form : VARNIK_FORMS(findBytes))
    for (u32 seed = 0; seed < 4000; ++seed) {
      Random random(seed);
      const std::string_view letters = std::string_view("abc").substr(0, 1 + random.below(3));
      const std::string data = random.text(1 + random.below(700), letters);
      const std::string pattern = random.text(1 + random.below(std::min(countOf(data), 12U)), letters);
      finding.check(form, data, pattern);
    }
}

TEST(FindBytes, SearchesLongDataWithARareAndAFrequentFirstByte) {
  Finding finding;
  const std::string words = repeated("the message of the header that was encoding it ", 9000);
  for (const auto& form : VARNIK_FORMS(findBytes))
    for (const std::string pattern : {"Qessage of", "the mesQage", "the header that was encodinQ", "tQ", "\xFF\xFE"})
      for (const u32 at : {0U, 255U, 256U, 1023U, 5000U, 8900U}) {
        std::string data = words;
        finding.check(form, data, pattern);
        finding.check(form, data.replace(at, pattern.size(), pattern), pattern);
        finding.check(form, data.substr(0, at + pattern.size()), pattern);
      }
  for (const auto& form : VARNIK_FORMS(findBytes)) {
    for (u32 n = 640; n < 704; ++n) finding.check(form, words.substr(0, n), "the mesQage");
    finding.check(form, std::string(10'000, 'a') + 'b', std::string(500, 'a') + 'b');
    finding.check(form, std::string(10'000, 'a'), 'b' + std::string(500, 'a'));
    finding.check(form, std::string(10'000, 'a'), std::string(10'000, 'a'));
  }
}

}  // namespace
