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
    {kUtf32ByMark, "utf-32", nullptr, Kind::kUtf32Le}, {kUtf16ByMark, "utf-16", nullptr, Kind::kUtf16Le},
    {37, "ibm037", "ibm-37_P100-1995", Kind::kSingleByte}, {437, "ibm437", "ibm-437_P100-1995", Kind::kSingleByte},
    {500, "ibm500", "ibm-500_P100-1995", Kind::kSingleByte}, {708, "x-cp708", "ibm-1089_P100-1995", Kind::kSingleByte},
    {720, "ibm720", "ibm-720_P100-1997", Kind::kSingleByte}, {737, "ibm737", "ibm-737_P100-1997", Kind::kSingleByte},
    {775, "ibm775", "ibm-775_P100-1996", Kind::kSingleByte}, {850, "ibm850", "ibm-850_P100-1995", Kind::kSingleByte},
    {851, "ibm851", "ibm-851_P100-1995", Kind::kSingleByte}, {852, "ibm852", "ibm-852_P100-1995", Kind::kSingleByte},
    {855, "ibm855", "ibm-855_P100-1995", Kind::kSingleByte}, {856, "ibm856", "ibm-856_P100-1995", Kind::kSingleByte},
    {857, "ibm857", "ibm-857_P100-1995", Kind::kSingleByte}, {858, "ibm00858", "ibm-858_P100-1997", Kind::kSingleByte},
    {860, "ibm860", "ibm-860_P100-1995", Kind::kSingleByte}, {861, "ibm861", "ibm-861_P100-1995", Kind::kSingleByte},
    {862, "ibm862", "ibm-862_P100-1995", Kind::kSingleByte}, {863, "ibm863", "ibm-863_P100-1995", Kind::kSingleByte},
    {864, "ibm864", "ibm-864_X110-1999", Kind::kSingleByte}, {865, "ibm865", "ibm-865_P100-1995", Kind::kSingleByte},
    {866, "ibm866", "ibm-866_P100-1995", Kind::kSingleByte}, {868, "ibm868", "ibm-868_P100-1995", Kind::kSingleByte},
    {869, "ibm869", "ibm-869_P100-1995", Kind::kSingleByte}, {870, "ibm870", "ibm-870_P100-1995", Kind::kSingleByte},
    {874, "windows-874", "windows-874-2000", Kind::kSingleByte},
    {875, "ibm875", "ibm-875_P100-1995", Kind::kSingleByte}, {918, "ibm918", "ibm-918_P100-1995", Kind::kSingleByte},
    {922, "ibm922", "ibm-922_P100-1999", Kind::kSingleByte}, {932, "shift_jis", "ibm-943_P15A-2003", Kind::kDoubleByte},
    {936, "gbk", "windows-936-2000", Kind::kDoubleByte}, {949, "ks_c_5601-1987", "windows-949-2000", Kind::kDoubleByte},
    {950, "big5", "windows-950-2000", Kind::kDoubleByte}, {951, "big5-hkscs", "ibm-1375_P100-2008", Kind::kMultiByte},
    {1006, "ibm1006", "ibm-1006_P100-1995", Kind::kSingleByte},
    {1026, "ibm1026", "ibm-1026_P100-1995", Kind::kSingleByte},
    {1047, "ibm1047", "ibm-1047_P100-1995", Kind::kSingleByte},
    {1051, "hp-roman8", "ibm-1051_P100-1995", Kind::kSingleByte},
    {1098, "ibm1098", "ibm-1098_P100-1995", Kind::kSingleByte},
    {1124, "ibm1124", "ibm-1124_P100-1996", Kind::kSingleByte},
    {1125, "ibm1125", "ibm-1125_P100-1997", Kind::kSingleByte},
    {1131, "ibm1131", "ibm-1131_P100-1997", Kind::kSingleByte},
    {1140, "ibm01140", "ibm-1140_P100-1997", Kind::kSingleByte},
    {1141, "ibm01141", "ibm-1141_P100-1997", Kind::kSingleByte},
    {1142, "ibm01142", "ibm-1142_P100-1997", Kind::kSingleByte},
    {1143, "ibm01143", "ibm-1143_P100-1997", Kind::kSingleByte},
    {1144, "ibm01144", "ibm-1144_P100-1997", Kind::kSingleByte},
    {1145, "ibm01145", "ibm-1145_P100-1997", Kind::kSingleByte},
    {1146, "ibm01146", "ibm-1146_P100-1997", Kind::kSingleByte},
    {1147, "ibm01147", "ibm-1147_P100-1997", Kind::kSingleByte},
    {1148, "ibm01148", "ibm-1148_P100-1997", Kind::kSingleByte},
    {1149, "ibm01149", "ibm-1149_P100-1997", Kind::kSingleByte}, {1200, "utf-16le", nullptr, Kind::kUtf16Le},
    {1201, "utf-16be", nullptr, Kind::kUtf16Be}, {1212, "scsu", "SCSU", Kind::kStateful},
    {1214, "bocu-1", "BOCU-1", Kind::kStateful}, {1250, "windows-1250", "ibm-5346_P100-1998", Kind::kSingleByte},
    {1251, "windows-1251", "ibm-5347_P100-1998", Kind::kSingleByte},
    {1252, "windows-1252", "ibm-5348_P100-1997", Kind::kSingleByte},
    {1253, "windows-1253", "ibm-5349_P100-1998", Kind::kSingleByte},
    {1254, "windows-1254", "ibm-5350_P100-1998", Kind::kSingleByte},
    {1255, "windows-1255", "ibm-9447_P100-2002", Kind::kSingleByte},
    {1256, "windows-1256", "ibm-9448_X100-2005", Kind::kSingleByte},
    {1257, "windows-1257", "ibm-9449_P100-2002", Kind::kSingleByte},
    {1258, "windows-1258", "ibm-5354_P100-1998", Kind::kSingleByte}, {9400, "cesu-8", "CESU-8", Kind::kMultiByte},
    {10000, "macintosh", "macos-0_2-10.2", Kind::kSingleByte},
    {10006, "x-mac-greek", "macos-6_2-10.4", Kind::kSingleByte},
    {10007, "x-mac-cyrillic", "macos-7_3-10.2", Kind::kSingleByte},
    {10017, "x-mac-ukrainian", "macos-7_3-10.2", Kind::kSingleByte},
    {10029, "x-mac-ce", "macos-29-10.2", Kind::kSingleByte},
    {10081, "x-mac-turkish", "macos-35-10.2", Kind::kSingleByte}, {12000, "utf-32le", nullptr, Kind::kUtf32Le},
    {12001, "utf-32be", nullptr, Kind::kUtf32Be}, {20127, "us-ascii", "US-ASCII", Kind::kSingleByte},
    {20273, "ibm273", "ibm-273_P100-1995", Kind::kSingleByte},
    {20277, "ibm277", "ibm-277_P100-1995", Kind::kSingleByte},
    {20278, "ibm278", "ibm-278_P100-1995", Kind::kSingleByte},
    {20280, "ibm280", "ibm-280_P100-1995", Kind::kSingleByte},
    {20284, "ibm284", "ibm-284_P100-1995", Kind::kSingleByte},
    {20285, "ibm285", "ibm-285_P100-1995", Kind::kSingleByte},
    {20290, "ibm290", "ibm-290_P100-1995", Kind::kSingleByte},
    {20297, "ibm297", "ibm-297_P100-1995", Kind::kSingleByte},
    {20420, "ibm420", "ibm-420_X120-1999", Kind::kSingleByte},
    {20424, "ibm424", "ibm-424_P100-1995", Kind::kSingleByte},
    {20838, "ibm-thai", "ibm-838_P100-1995", Kind::kSingleByte},
    {20866, "koi8-r", "ibm-878_P100-1996", Kind::kSingleByte},
    {20871, "ibm871", "ibm-871_P100-1995", Kind::kSingleByte}, {20932, "x-cp20932", "euc-jp-2007", Kind::kMultiByte},
    {20936, "x-cp20936", "ibm-1383_P110-1999", Kind::kDoubleByte},
    {20949, "x-cp20949", "ibm-970_P110_P110-2006_U2", Kind::kDoubleByte},
    {21025, "ibm1025", "ibm-1025_P100-1995", Kind::kSingleByte},
    {21866, "koi8-u", "ibm-1168_P100-2002", Kind::kSingleByte}, {28591, "iso-8859-1", "ISO-8859-1", Kind::kSingleByte},
    {28592, "iso-8859-2", "ibm-912_P100-1995", Kind::kSingleByte},
    {28593, "iso-8859-3", "ibm-913_P100-2000", Kind::kSingleByte},
    {28594, "iso-8859-4", "ibm-914_P100-1995", Kind::kSingleByte},
    {28595, "iso-8859-5", "ibm-915_P100-1995", Kind::kSingleByte},
    {28596, "iso-8859-6", "ibm-1089_P100-1995", Kind::kSingleByte},
    {28597, "iso-8859-7", "ibm-9005_X110-2007", Kind::kSingleByte},
    {28598, "iso-8859-8", "ibm-5012_P100-1999", Kind::kSingleByte},
    {28599, "iso-8859-9", "ibm-920_P100-1995", Kind::kSingleByte},
    {28600, "iso-8859-10", "iso-8859_10-1998", Kind::kSingleByte},
    {28601, "iso-8859-11", "iso-8859_11-2001", Kind::kSingleByte},
    {28603, "iso-8859-13", "ibm-921_P100-1995", Kind::kSingleByte},
    {28604, "iso-8859-14", "iso-8859_14-1998", Kind::kSingleByte},
    {28605, "iso-8859-15", "ibm-923_P100-1998", Kind::kSingleByte}, {28606, "iso-8859-16", nullptr, Kind::kSingleByte},
    {38598, "iso-8859-8-i", "ibm-5012_P100-1999", Kind::kSingleByte},
    {50220, "iso-2022-jp", "ISO_2022,locale=ja,version=0", Kind::kStateful},
    {50221, "iso-2022-jp-1", "ISO_2022,locale=ja,version=1", Kind::kStateful},
    {50222, "x-cp50222", "ISO_2022,locale=ja,version=3", Kind::kStateful},
    {50223, "iso-2022-jp-2", "ISO_2022,locale=ja,version=2", Kind::kStateful},
    {50225, "iso-2022-kr", "ISO_2022,locale=ko,version=1", Kind::kStateful},
    {50227, "iso-2022-cn", "ISO_2022,locale=zh,version=0", Kind::kStateful},
    {50228, "iso-2022-cn-ext", "ISO_2022,locale=zh,version=1", Kind::kStateful},
    {50229, "x-cp50229", "ISO_2022,locale=zh,version=2", Kind::kStateful},
    {50930, "ibm930", "ibm-930_P120-1999", Kind::kStateful}, {50931, "ibm931", "ibm-939_P120-1999", Kind::kStateful},
    {50933, "ibm933", "ibm-933_P110-1995", Kind::kStateful}, {50935, "ibm935", "ibm-935_P110-1999", Kind::kStateful},
    {50937, "ibm937", "ibm-937_P110-1999", Kind::kStateful}, {50939, "ibm939", "ibm-939_P120-1999", Kind::kStateful},
    {51932, "euc-jp", "euc-jp-2007", Kind::kMultiByte}, {51936, "euc-cn", "ibm-1383_P110-1999", Kind::kDoubleByte},
    {51949, "euc-kr", "ibm-970_P110_P110-2006_U2", Kind::kDoubleByte},
    {51950, "euc-tw", "euc-tw-2014", Kind::kMultiByte}, {52936, "hz-gb-2312", "HZ", Kind::kStateful},
    {54936, "gb18030", "gb18030", Kind::kMultiByte}, {57002, "x-iscii-de", "ISCII,version=0", Kind::kStateful},
    {57003, "x-iscii-be", "ISCII,version=1", Kind::kStateful},
    {57004, "x-iscii-ta", "ISCII,version=5", Kind::kStateful},
    {57005, "x-iscii-te", "ISCII,version=6", Kind::kStateful},
    {57006, "x-iscii-as", "ISCII,version=1", Kind::kStateful},
    {57007, "x-iscii-or", "ISCII,version=4", Kind::kStateful},
    {57008, "x-iscii-ka", "ISCII,version=7", Kind::kStateful},
    {57009, "x-iscii-ma", "ISCII,version=8", Kind::kStateful},
    {57010, "x-iscii-gu", "ISCII,version=3", Kind::kStateful},
    {57011, "x-iscii-pa", "ISCII,version=2", Kind::kStateful}, {65000, "utf-7", "UTF-7", Kind::kStateful},
    {65001, "utf-8", nullptr, Kind::kUtf8},
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
  const CharsetInfo* const at =
      std::lower_bound(std::begin(kCharsets), std::end(kCharsets), CharsetInfo{id, {}, {}, {}}, isBelow);
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
