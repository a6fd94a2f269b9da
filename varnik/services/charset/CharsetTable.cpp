// A number is Windows' where Windows has one, else the charset's IBM identifier (851, 1006, 1051, 1212, 9400, ...) or,
// where there is neither, a number in the gap beside its kin (28600, 28601, 28604, 28606, 50223, 50228). ISO-8859-1 and
// US-ASCII are themselves here, as IANA has it, not other names of windows-1252.
#include "varnik/services/charset/internal/CharsetTable.h"

#include <algorithm>
#include <iterator>

namespace vk_charset {
namespace {

// Sorted by id, which the compiler checks.
// clang-format off
constexpr CharsetInfo kCharsets[] = {
    {"utf-32", nullptr, kUtf32ByMark, Kind::kUtf32Le}, {"utf-16", nullptr, kUtf16ByMark, Kind::kUtf16Le},
    {"ibm037", "ibm-37_P100-1995", 37, Kind::kSingleByte}, {"ibm437", "ibm-437_P100-1995", 437, Kind::kSingleByte},
    {"ibm500", "ibm-500_P100-1995", 500, Kind::kSingleByte}, {"x-cp708", "ibm-1089_P100-1995", 708, Kind::kSingleByte},
    {"ibm720", "ibm-720_P100-1997", 720, Kind::kSingleByte}, {"ibm737", "ibm-737_P100-1997", 737, Kind::kSingleByte},
    {"ibm775", "ibm-775_P100-1996", 775, Kind::kSingleByte}, {"ibm850", "ibm-850_P100-1995", 850, Kind::kSingleByte},
    {"ibm851", "ibm-851_P100-1995", 851, Kind::kSingleByte}, {"ibm852", "ibm-852_P100-1995", 852, Kind::kSingleByte},
    {"ibm855", "ibm-855_P100-1995", 855, Kind::kSingleByte}, {"ibm856", "ibm-856_P100-1995", 856, Kind::kSingleByte},
    {"ibm857", "ibm-857_P100-1995", 857, Kind::kSingleByte}, {"ibm00858", "ibm-858_P100-1997", 858, Kind::kSingleByte},
    {"ibm860", "ibm-860_P100-1995", 860, Kind::kSingleByte}, {"ibm861", "ibm-861_P100-1995", 861, Kind::kSingleByte},
    {"ibm862", "ibm-862_P100-1995", 862, Kind::kSingleByte}, {"ibm863", "ibm-863_P100-1995", 863, Kind::kSingleByte},
    {"ibm864", "ibm-864_X110-1999", 864, Kind::kSingleByte}, {"ibm865", "ibm-865_P100-1995", 865, Kind::kSingleByte},
    {"ibm866", "ibm-866_P100-1995", 866, Kind::kSingleByte}, {"ibm868", "ibm-868_P100-1995", 868, Kind::kSingleByte},
    {"ibm869", "ibm-869_P100-1995", 869, Kind::kSingleByte}, {"ibm870", "ibm-870_P100-1995", 870, Kind::kSingleByte},
    {"windows-874", "windows-874-2000", 874, Kind::kSingleByte},
    {"ibm875", "ibm-875_P100-1995", 875, Kind::kSingleByte}, {"ibm918", "ibm-918_P100-1995", 918, Kind::kSingleByte},
    {"ibm922", "ibm-922_P100-1999", 922, Kind::kSingleByte}, {"shift_jis", "ibm-943_P15A-2003", 932, Kind::kDoubleByte},
    {"gbk", "windows-936-2000", 936, Kind::kDoubleByte}, {"ks_c_5601-1987", "windows-949-2000", 949, Kind::kDoubleByte},
    {"big5", "windows-950-2000", 950, Kind::kDoubleByte}, {"big5-hkscs", "ibm-1375_P100-2008", 951, Kind::kMultiByte},
    {"ibm1006", "ibm-1006_P100-1995", 1006, Kind::kSingleByte},
    {"ibm1026", "ibm-1026_P100-1995", 1026, Kind::kSingleByte},
    {"ibm1047", "ibm-1047_P100-1995", 1047, Kind::kSingleByte},
    {"hp-roman8", "ibm-1051_P100-1995", 1051, Kind::kSingleByte},
    {"ibm1098", "ibm-1098_P100-1995", 1098, Kind::kSingleByte},
    {"ibm1124", "ibm-1124_P100-1996", 1124, Kind::kSingleByte},
    {"ibm1125", "ibm-1125_P100-1997", 1125, Kind::kSingleByte},
    {"ibm1131", "ibm-1131_P100-1997", 1131, Kind::kSingleByte},
    {"ibm01140", "ibm-1140_P100-1997", 1140, Kind::kSingleByte},
    {"ibm01141", "ibm-1141_P100-1997", 1141, Kind::kSingleByte},
    {"ibm01142", "ibm-1142_P100-1997", 1142, Kind::kSingleByte},
    {"ibm01143", "ibm-1143_P100-1997", 1143, Kind::kSingleByte},
    {"ibm01144", "ibm-1144_P100-1997", 1144, Kind::kSingleByte},
    {"ibm01145", "ibm-1145_P100-1997", 1145, Kind::kSingleByte},
    {"ibm01146", "ibm-1146_P100-1997", 1146, Kind::kSingleByte},
    {"ibm01147", "ibm-1147_P100-1997", 1147, Kind::kSingleByte},
    {"ibm01148", "ibm-1148_P100-1997", 1148, Kind::kSingleByte},
    {"ibm01149", "ibm-1149_P100-1997", 1149, Kind::kSingleByte}, {"utf-16le", nullptr, 1200, Kind::kUtf16Le},
    {"utf-16be", nullptr, 1201, Kind::kUtf16Be}, {"scsu", "SCSU", 1212, Kind::kStateful},
    {"bocu-1", "BOCU-1", 1214, Kind::kStateful}, {"windows-1250", "ibm-5346_P100-1998", 1250, Kind::kSingleByte},
    {"windows-1251", "ibm-5347_P100-1998", 1251, Kind::kSingleByte},
    {"windows-1252", "ibm-5348_P100-1997", 1252, Kind::kSingleByte},
    {"windows-1253", "ibm-5349_P100-1998", 1253, Kind::kSingleByte},
    {"windows-1254", "ibm-5350_P100-1998", 1254, Kind::kSingleByte},
    {"windows-1255", "ibm-9447_P100-2002", 1255, Kind::kSingleByte},
    {"windows-1256", "ibm-9448_X100-2005", 1256, Kind::kSingleByte},
    {"windows-1257", "ibm-9449_P100-2002", 1257, Kind::kSingleByte},
    {"windows-1258", "ibm-5354_P100-1998", 1258, Kind::kSingleByte}, {"cesu-8", "CESU-8", 9400, Kind::kMultiByte},
    {"macintosh", "macos-0_2-10.2", 10000, Kind::kSingleByte},
    {"x-mac-greek", "macos-6_2-10.4", 10006, Kind::kSingleByte},
    {"x-mac-cyrillic", "macos-7_3-10.2", 10007, Kind::kSingleByte},
    {"x-mac-ukrainian", "macos-7_3-10.2", 10017, Kind::kSingleByte},
    {"x-mac-ce", "macos-29-10.2", 10029, Kind::kSingleByte},
    {"x-mac-turkish", "macos-35-10.2", 10081, Kind::kSingleByte}, {"utf-32le", nullptr, 12000, Kind::kUtf32Le},
    {"utf-32be", nullptr, 12001, Kind::kUtf32Be}, {"us-ascii", "US-ASCII", 20127, Kind::kSingleByte},
    {"ibm273", "ibm-273_P100-1995", 20273, Kind::kSingleByte},
    {"ibm277", "ibm-277_P100-1995", 20277, Kind::kSingleByte},
    {"ibm278", "ibm-278_P100-1995", 20278, Kind::kSingleByte},
    {"ibm280", "ibm-280_P100-1995", 20280, Kind::kSingleByte},
    {"ibm284", "ibm-284_P100-1995", 20284, Kind::kSingleByte},
    {"ibm285", "ibm-285_P100-1995", 20285, Kind::kSingleByte},
    {"ibm290", "ibm-290_P100-1995", 20290, Kind::kSingleByte},
    {"ibm297", "ibm-297_P100-1995", 20297, Kind::kSingleByte},
    {"ibm420", "ibm-420_X120-1999", 20420, Kind::kSingleByte},
    {"ibm424", "ibm-424_P100-1995", 20424, Kind::kSingleByte},
    {"ibm-thai", "ibm-838_P100-1995", 20838, Kind::kSingleByte},
    {"koi8-r", "ibm-878_P100-1996", 20866, Kind::kSingleByte},
    {"ibm871", "ibm-871_P100-1995", 20871, Kind::kSingleByte}, {"x-cp20932", "euc-jp-2007", 20932, Kind::kMultiByte},
    {"x-cp20936", "ibm-1383_P110-1999", 20936, Kind::kDoubleByte},
    {"x-cp20949", "ibm-970_P110_P110-2006_U2", 20949, Kind::kDoubleByte},
    {"ibm1025", "ibm-1025_P100-1995", 21025, Kind::kSingleByte},
    {"koi8-u", "ibm-1168_P100-2002", 21866, Kind::kSingleByte}, {"iso-8859-1", "ISO-8859-1", 28591, Kind::kSingleByte},
    {"iso-8859-2", "ibm-912_P100-1995", 28592, Kind::kSingleByte},
    {"iso-8859-3", "ibm-913_P100-2000", 28593, Kind::kSingleByte},
    {"iso-8859-4", "ibm-914_P100-1995", 28594, Kind::kSingleByte},
    {"iso-8859-5", "ibm-915_P100-1995", 28595, Kind::kSingleByte},
    {"iso-8859-6", "ibm-1089_P100-1995", 28596, Kind::kSingleByte},
    {"iso-8859-7", "ibm-9005_X110-2007", 28597, Kind::kSingleByte},
    {"iso-8859-8", "ibm-5012_P100-1999", 28598, Kind::kSingleByte},
    {"iso-8859-9", "ibm-920_P100-1995", 28599, Kind::kSingleByte},
    {"iso-8859-10", "iso-8859_10-1998", 28600, Kind::kSingleByte},
    {"iso-8859-11", "iso-8859_11-2001", 28601, Kind::kSingleByte},
    {"iso-8859-13", "ibm-921_P100-1995", 28603, Kind::kSingleByte},
    {"iso-8859-14", "iso-8859_14-1998", 28604, Kind::kSingleByte},
    {"iso-8859-15", "ibm-923_P100-1998", 28605, Kind::kSingleByte}, {"iso-8859-16", nullptr, 28606, Kind::kSingleByte},
    {"iso-8859-8-i", "ibm-5012_P100-1999", 38598, Kind::kSingleByte},
    {"iso-2022-jp", "ISO_2022,locale=ja,version=0", 50220, Kind::kStateful},
    {"iso-2022-jp-1", "ISO_2022,locale=ja,version=1", 50221, Kind::kStateful},
    {"x-cp50222", "ISO_2022,locale=ja,version=3", 50222, Kind::kStateful},
    {"iso-2022-jp-2", "ISO_2022,locale=ja,version=2", 50223, Kind::kStateful},
    {"iso-2022-kr", "ISO_2022,locale=ko,version=1", 50225, Kind::kStateful},
    {"iso-2022-cn", "ISO_2022,locale=zh,version=0", 50227, Kind::kStateful},
    {"iso-2022-cn-ext", "ISO_2022,locale=zh,version=1", 50228, Kind::kStateful},
    {"x-cp50229", "ISO_2022,locale=zh,version=2", 50229, Kind::kStateful},
    {"ibm930", "ibm-930_P120-1999", 50930, Kind::kStateful}, {"ibm931", "ibm-939_P120-1999", 50931, Kind::kStateful},
    {"ibm933", "ibm-933_P110-1995", 50933, Kind::kStateful}, {"ibm935", "ibm-935_P110-1999", 50935, Kind::kStateful},
    {"ibm937", "ibm-937_P110-1999", 50937, Kind::kStateful}, {"ibm939", "ibm-939_P120-1999", 50939, Kind::kStateful},
    {"euc-jp", "euc-jp-2007", 51932, Kind::kMultiByte}, {"euc-cn", "ibm-1383_P110-1999", 51936, Kind::kDoubleByte},
    {"euc-kr", "ibm-970_P110_P110-2006_U2", 51949, Kind::kDoubleByte},
    {"euc-tw", "euc-tw-2014", 51950, Kind::kMultiByte}, {"hz-gb-2312", "HZ", 52936, Kind::kStateful},
    {"gb18030", "gb18030", 54936, Kind::kMultiByte}, {"x-iscii-de", "ISCII,version=0", 57002, Kind::kStateful},
    {"x-iscii-be", "ISCII,version=1", 57003, Kind::kStateful},
    {"x-iscii-ta", "ISCII,version=5", 57004, Kind::kStateful},
    {"x-iscii-te", "ISCII,version=6", 57005, Kind::kStateful},
    {"x-iscii-as", "ISCII,version=1", 57006, Kind::kStateful},
    {"x-iscii-or", "ISCII,version=4", 57007, Kind::kStateful},
    {"x-iscii-ka", "ISCII,version=7", 57008, Kind::kStateful},
    {"x-iscii-ma", "ISCII,version=8", 57009, Kind::kStateful},
    {"x-iscii-gu", "ISCII,version=3", 57010, Kind::kStateful},
    {"x-iscii-pa", "ISCII,version=2", 57011, Kind::kStateful}, {"utf-7", "UTF-7", 65000, Kind::kStateful},
    {"utf-8", nullptr, 65001, Kind::kUtf8},
};
// clang-format on

constexpr bool isBelow(const CharsetInfo& a, const CharsetInfo& b) {
  return a.id < b.id;
}
constexpr bool isSorted() {
  for (u32 i = 1; i < std::size(kCharsets); ++i)
    if (!isBelow(kCharsets[i - 1], kCharsets[i])) return false;
  return true;
}
static_assert(isSorted());

constexpr const CharsetInfo* place(s32 id) {
  const CharsetInfo* at = kCharsets;
  while (at->id != id) ++at;
  return at;
}

const CharsetInfo* find(s32 id) {
  const CharsetInfo* const at = std::lower_bound(std::begin(kCharsets), std::end(kCharsets),
                                                 CharsetInfo{nullptr, nullptr, id, Kind::kUtf8}, isBelow);
  return at != std::end(kCharsets) && at->id == id ? at : nullptr;
}

}  // namespace

const CharsetInfo* charsetByCodePage(s32 codePage) {
  // Those that most calls ask for are not looked up.
  static constexpr s32 kOften[] = {65001, 1200, 1201, 12000, 12001, 1252, 28591};
  static constexpr const CharsetInfo* kWhere[] = {place(kOften[0]), place(kOften[1]), place(kOften[2]),
                                                  place(kOften[3]), place(kOften[4]), place(kOften[5]),
                                                  place(kOften[6])};
  for (u32 i = 0; i < std::size(kOften); ++i)
    if (kOften[i] == codePage) return kWhere[i];
  return codePage > 0 ? find(codePage) : nullptr;
}

const CharsetInfo* charsets(u32& count) {
  count = static_cast<u32>(std::size(kCharsets));
  return kCharsets;
}

const CharsetInfo* charsetById(s32 id) {
  return find(id);
}

}  // namespace vk_charset
