#include <algorithm>
#include <iterator>

#include "varnik/services/charset/internal/CharsetTable.h"

namespace vk_charset {
namespace {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Reads a label as it counts: lower case, without separators and without the zeros in front of a number.
class LabelReader {
 public:
  constexpr LabelReader(const char* at, const char* end) : at_(at), end_(end) {}
  /// Returns the next character that counts, 0 at the end.
  constexpr char next() {
    while (at_ != end_) {
      char c = *at_++;
      if (c == '-' || c == '_' || c == ' ') continue;
      if (c == '0' && !isDigit(last_) && at_ != end_ && isDigit(*at_)) continue;
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
      return last_ = c == 0 ? '\1' : c;  // a zero byte within a label is no end: it matches nothing
    }
    return 0;
  }

 private:
  const char* at_;
  const char* end_;
  char last_ = 0;
};

constexpr int compare(LabelReader a, LabelReader b) {
  for (;;) {
    const char x = a.next(), y = b.next();
    if (x != y) return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
    if (x == 0) return 0;
  }
}

constexpr LabelReader readerOf(const char* text) {
  const char* end = text;
  while (*end != 0) ++end;
  return {text, end};
}

// What IANA and the WHATWG Encoding Standard call the charsets, what other systems do, and what people write; each once
// in the spelling that counts. "gb2312" and its kin mean GBK, the superset that such text is in. Sorted as labels
// compare, which the compiler checks. `cp`, `x-cp` and `windows-` in front of a number need no entry: see byNumber.
// clang-format off
constexpr Label kLabels[] = {
    {"437", 437}, {"850", 850}, {"851", 851}, {"852", 852}, {"855", 855}, {"857", 857}, {"860", 860}, {"861", 861},
    {"862", 862}, {"863", 863}, {"865", 865}, {"866", 866}, {"869", 869}, {"8859_1", 28591}, {"ansi_x3.4-1968", 20127},
    {"ansi_x3.4-1986", 20127}, {"arabic", 28596}, {"ascii", 20127}, {"ascii7", 20127}, {"asmo-708", 28596},
    {"big5", 950}, {"big5-eten", 950}, {"big5hk", 951}, {"big5-hkscs", 951}, {"big5-hkscs:unicode3.0", 951},
    {"big-five", 950}, {"bocu-1", 1214}, {"ccsid01140", 1140}, {"ccsid01141", 1141}, {"ccsid01142", 1142},
    {"ccsid01143", 1143}, {"ccsid01144", 1144}, {"ccsid01145", 1145}, {"ccsid01146", 1146}, {"ccsid01147", 1147},
    {"ccsid01148", 1148}, {"ccsid01149", 1149}, {"ccsid00858", 858}, {"cesu-8", 9400}, {"chinese", 936},
    {"cn-big5", 950}, {"cp1025", 21025}, {"cp1089", 28596}, {"cp1383", 51936}, {"cp273", 20273}, {"cp277", 20277},
    {"cp278", 20278}, {"cp280", 20280}, {"cp284", 20284}, {"cp285", 20285}, {"cp290", 20290}, {"cp297", 20297},
    {"cp367", 20127}, {"cp420", 20420}, {"cp424", 20424}, {"cp819", 28591}, {"cp838", 20838}, {"cp871", 20871},
    {"cp912", 28592}, {"cp913", 28593}, {"cp914", 28594}, {"cp915", 28595}, {"cp920", 28599}, {"cp923", 28605},
    {"cp930", 50930}, {"cp933", 50933}, {"cp935", 50935}, {"cp937", 50937}, {"cp939", 50939}, {"cp943c", 932},
    {"cp970", 51949}, {"cp-ar", 868}, {"cp-gr", 869}, {"cpibm284", 20284}, {"cpibm285", 20285}, {"cpibm297", 20297},
    {"cpibm37", 37}, {"cp-is", 861}, {"csascii", 20127}, {"csbig5", 950}, {"csbig5hkscs", 951}, {"csbocu-1", 1214},
    {"cscesu-8", 9400}, {"cseuckr", 51949}, {"cseucpkdfmtjapanese", 51932}, {"csgb18030", 54936}, {"csgb2312", 936},
    {"csgbk", 936}, {"cshproman8", 1051}, {"cshzgb2312", 52936}, {"csibm1026", 1026}, {"csibm01140", 1140},
    {"csibm01141", 1141}, {"csibm01142", 1142}, {"csibm01143", 1143}, {"csibm01144", 1144}, {"csibm01145", 1145},
    {"csibm01146", 1146}, {"csibm01147", 1147}, {"csibm01148", 1148}, {"csibm01149", 1149}, {"csibm273", 20273},
    {"csibm277", 20277}, {"csibm278", 20278}, {"csibm280", 20280}, {"csibm284", 20284}, {"csibm285", 20285},
    {"csibm290", 20290}, {"csibm297", 20297}, {"csibm037", 37}, {"csibm420", 20420}, {"csibm424", 20424},
    {"csibm500", 500}, {"csibm855", 855}, {"csibm857", 857}, {"csibm00858", 858}, {"csibm860", 860}, {"csibm861", 861},
    {"csibm863", 863}, {"csibm864", 864}, {"csibm865", 865}, {"csibm866", 866}, {"csibm868", 868}, {"csibm869", 869},
    {"csibm870", 870}, {"csibm871", 20871}, {"csibm918", 918}, {"csibmthai", 20838}, {"csiso2022cn", 50227},
    {"csiso2022cnext", 50228}, {"csiso2022jp", 50220}, {"csiso2022jp2", 50223}, {"csiso2022kr", 50225},
    {"csiso58gb231280", 936}, {"csiso885911", 28601}, {"csiso885913", 28603}, {"csiso885914", 28604},
    {"csiso885915", 28605}, {"csiso885916", 28606}, {"csiso88596e", 28596}, {"csiso88596i", 28596},
    {"csiso88598e", 28598}, {"csiso88598i", 38598}, {"csisolatin0", 28605}, {"csisolatin1", 28591},
    {"csisolatin2", 28592}, {"csisolatin3", 28593}, {"csisolatin4", 28594}, {"csisolatin5", 28599},
    {"csisolatin6", 28600}, {"csisolatin9", 28605}, {"csisolatinarabic", 28596}, {"csisolatincyrillic", 28595},
    {"csisolatingreek", 28597}, {"csisolatinhebrew", 28598}, {"csjisencoding", 50221}, {"cskoi8r", 20866},
    {"cskoi8u", 21866}, {"csksc56011987", 949}, {"csmacintosh", 10000}, {"cspc775baltic", 775},
    {"cspc850multilingual", 850}, {"cspc851", 851}, {"cspc862latinhebrew", 862}, {"cspc8codepage437", 437},
    {"cspcp852", 852}, {"cspcp855", 855}, {"csscsu", 1212}, {"csshiftjis", 932}, {"cstis620", 874},
    {"csucs4", kUtf32ByMark}, {"csunicode", kUtf16ByMark}, {"csunicode11utf7", 65000}, {"csutf16", kUtf16ByMark},
    {"csutf16be", 1201}, {"csutf16le", 1200}, {"csutf32be", 12001}, {"csutf32le", 12000}, {"csutf7", 65000},
    {"csutf8", 65001}, {"cswindows1250", 1250}, {"cswindows1251", 1251}, {"cswindows1252", 1252},
    {"cswindows1253", 1253}, {"cswindows1254", 1254}, {"cswindows1255", 1255}, {"cswindows1256", 1256},
    {"cswindows1257", 1257}, {"cswindows1258", 1258}, {"cswindows31j", 932}, {"cswindows874", 874}, {"cyrillic", 28595},
    {"dos-720", 720}, {"dos-862", 862}, {"dos-874", 874}, {"ebcdic-cp-ar1", 20420}, {"ebcdic-cp-ar2", 918},
    {"ebcdic-cp-be", 500}, {"ebcdic-cp-ca", 37}, {"ebcdic-cp-ch", 500}, {"ebcdic-cp-dk", 20277},
    {"ebcdic-cp-es", 20284}, {"ebcdic-cp-fi", 20278}, {"ebcdic-cp-fr", 20297}, {"ebcdic-cp-gb", 20285},
    {"ebcdic-cp-he", 20424}, {"ebcdic-cp-is", 20871}, {"ebcdic-cp-it", 20280}, {"ebcdic-cp-nl", 37},
    {"ebcdic-cp-no", 20277}, {"ebcdic-cp-roece", 870}, {"ebcdic-cp-se", 20278}, {"ebcdic-cp-us", 37},
    {"ebcdic-cp-wt", 37}, {"ebcdic-cp-yu", 870}, {"ebcdic-de-273+euro", 1141}, {"ebcdic-dk-277+euro", 1142},
    {"ebcdic-es-284+euro", 1145}, {"ebcdic-fi-278+euro", 1143}, {"ebcdic-fr-297+euro", 1147}, {"ebcdic-gb", 20285},
    {"ebcdic-gb-285+euro", 1146}, {"ebcdic-international-500+euro", 1148}, {"ebcdic-is", 20871},
    {"ebcdic-is-871+euro", 1149}, {"ebcdic-it-280+euro", 1144}, {"ebcdic-jp-kana", 20290}, {"ebcdic-no-277+euro", 1142},
    {"ebcdic-se-278+euro", 1143}, {"ebcdic-sv", 20278}, {"ebcdic-us-37+euro", 1140}, {"ecma-114", 28596},
    {"ecma-118", 28597}, {"elot_928", 28597}, {"euc-cn", 51936}, {"eucjis", 51932}, {"euc-jp", 51932},
    {"euc-kr", 51949}, {"euc-tw", 51950}, {"extended_unix_code_packed_format_for_japanese", 51932}, {"gb18030", 54936},
    {"gb2312", 936}, {"gb_2312-80", 936}, {"gbk", 936}, {"greek", 28597}, {"greek8", 28597}, {"hebrew", 28598},
    {"hkscs-big5", 951}, {"hp-roman8", 1051}, {"hz", 52936}, {"hz-gb-2312", 52936}, {"ibm1006", 1006},
    {"ibm1025", 21025}, {"ibm1026", 1026}, {"ibm1047", 1047}, {"ibm-1089", 28596}, {"ibm1098", 1098}, {"ibm1124", 1124},
    {"ibm1125", 1125}, {"ibm1131", 1131}, {"ibm01140", 1140}, {"ibm01141", 1141}, {"ibm01142", 1142},
    {"ibm01143", 1143}, {"ibm01144", 1144}, {"ibm01145", 1145}, {"ibm01146", 1146}, {"ibm01147", 1147},
    {"ibm01148", 1148}, {"ibm01149", 1149}, {"ibm273", 20273}, {"ibm277", 20277}, {"ibm278", 20278}, {"ibm280", 20280},
    {"ibm284", 20284}, {"ibm285", 20285}, {"ibm290", 20290}, {"ibm297", 20297}, {"ibm367", 20127}, {"ibm037", 37},
    {"ibm420", 20420}, {"ibm424", 20424}, {"ibm437", 437}, {"ibm500", 500}, {"ibm720", 720}, {"ibm737", 737},
    {"ibm775", 775}, {"ibm819", 28591}, {"ibm838", 20838}, {"ibm850", 850}, {"ibm851", 851}, {"ibm852", 852},
    {"ibm855", 855}, {"ibm856", 856}, {"ibm857", 857}, {"ibm00858", 858}, {"ibm860", 860}, {"ibm861", 861},
    {"ibm862", 862}, {"ibm863", 863}, {"ibm864", 864}, {"ibm865", 865}, {"ibm866", 866}, {"ibm868", 868},
    {"ibm869", 869}, {"ibm870", 870}, {"ibm871", 20871}, {"ibm875", 875}, {"ibm-912", 28592}, {"ibm-913", 28593},
    {"ibm-914", 28594}, {"ibm-915", 28595}, {"ibm918", 918}, {"ibm-920", 28599}, {"ibm922", 922}, {"ibm-923", 28605},
    {"ibm930", 50930}, {"ibm931", 50931}, {"ibm933", 50933}, {"ibm935", 50935}, {"ibm937", 50937}, {"ibm939", 50939},
    {"ibm943", 932}, {"ibm-970", 51949}, {"ibm-euckr", 51949}, {"ibm-thai", 20838}, {"iso-10646-ucs-2", kUtf16ByMark},
    {"iso-10646-ucs-4", kUtf32ByMark}, {"iso-2022-cn", 50227}, {"iso-2022-cn-ext", 50228}, {"iso-2022-jp", 50220},
    {"iso-2022-jp-1", 50221}, {"iso-2022-jp-2", 50223}, {"iso-2022-kr", 50225}, {"iso_646.irv:1983", 20127},
    {"iso_646.irv:1991", 20127}, {"iso646-us", 20127}, {"iso-8859-1", 28591}, {"iso-8859-10", 28600},
    {"iso_8859-10:1992", 28600}, {"iso-8859-11", 28601}, {"iso-8859-13", 28603}, {"iso-8859-14", 28604},
    {"iso_8859-14:1998", 28604}, {"iso-8859-15", 28605}, {"iso8859_15_fdis", 28605}, {"iso-8859-16", 28606},
    {"iso_8859-16:2001", 28606}, {"iso_8859-1:1987", 28591}, {"iso-8859-2", 28592}, {"iso_8859-2:1987", 28592},
    {"iso-8859-3", 28593}, {"iso_8859-3:1988", 28593}, {"iso-8859-4", 28594}, {"iso_8859-4:1988", 28594},
    {"iso-8859-5", 28595}, {"iso_8859-5:1988", 28595}, {"iso-8859-6", 28596}, {"iso_8859-6:1987", 28596},
    {"iso-8859-6-e", 28596}, {"iso-8859-6-i", 28596}, {"iso-8859-7", 28597}, {"iso_8859-7:1987", 28597},
    {"iso-8859-8", 28598}, {"iso_8859-8:1988", 28598}, {"iso-8859-8-e", 28598}, {"iso-8859-8-i", 38598},
    {"iso-8859-9", 28599}, {"iso_8859-9:1989", 28599}, {"iso-celtic", 28604}, {"iso-ir-100", 28591},
    {"iso-ir-101", 28592}, {"iso-ir-109", 28593}, {"iso-ir-110", 28594}, {"iso-ir-126", 28597}, {"iso-ir-127", 28596},
    {"iso-ir-138", 28598}, {"iso-ir-144", 28595}, {"iso-ir-148", 28599}, {"iso-ir-149", 949}, {"iso-ir-157", 28600},
    {"iso-ir-199", 28604}, {"iso-ir-226", 28606}, {"iso-ir-58", 936}, {"iso-ir-6", 20127}, {"jis", 50221},
    {"jis7", 50222}, {"jis_encoding", 50221}, {"koi", 20866}, {"koi8", 20866}, {"koi8-r", 20866}, {"koi8-ru", 21866},
    {"koi8-u", 21866}, {"korean", 949}, {"ksc5601", 949}, {"ks_c_5601-1987", 949}, {"ks_c_5601-1989", 949},
    {"l1", 28591}, {"l10", 28606}, {"l2", 28592}, {"l3", 28593}, {"l4", 28594}, {"l5", 28599}, {"l6", 28600},
    {"l7", 28603}, {"l8", 28604}, {"l9", 28605}, {"latin0", 28605}, {"latin1", 28591}, {"latin10", 28606},
    {"latin2", 28592}, {"latin3", 28593}, {"latin4", 28594}, {"latin5", 28599}, {"latin6", 28600}, {"latin7", 28603},
    {"latin8", 28604}, {"latin9", 28605}, {"logical", 38598}, {"mac", 10000}, {"macintosh", 10000}, {"macroman", 10000},
    {"ms874", 874}, {"ms932", 932}, {"ms936", 936}, {"ms949", 949}, {"ms950", 950}, {"ms_kanji", 932},
    {"pc-multilingual-850+euro", 858}, {"r8", 1051}, {"roman8", 1051}, {"scsu", 1212}, {"shift_jis", 932},
    {"sjis", 932}, {"sun_eu_greek", 28597}, {"thai8", 28601}, {"tis-620", 874}, {"tis620.2533", 874},
    {"turkish", 28599}, {"ucs-2", kUtf16ByMark}, {"ucs-2be", 1201}, {"ucs-2le", 1200}, {"ucs-4", kUtf32ByMark},
    {"ucs-4be", 12001}, {"ucs-4le", 12000}, {"uhc", 949}, {"ujis", 51932}, {"unicode", kUtf16ByMark},
    {"unicode-1-1-utf-7", 65000}, {"unicode-1-1-utf-8", 65001}, {"unicode-2-0-utf-7", 65000},
    {"unicode-2-0-utf-8", 65001}, {"unicodebigunmarked", 1201}, {"unicodefeff", 1200}, {"unicodefffe", 1201},
    {"unicodelittleunmarked", 1200}, {"us", 20127}, {"us-ascii", 20127}, {"utf-16", kUtf16ByMark}, {"utf-16be", 1201},
    {"utf-16le", 1200}, {"utf-32", kUtf32ByMark}, {"utf-32be", 12001}, {"utf-32le", 12000}, {"utf-7", 65000},
    {"utf-8", 65001}, {"visual", 28598}, {"windows-1250", 1250}, {"windows-1251", 1251}, {"windows-1252", 1252},
    {"windows-1253", 1253}, {"windows-1254", 1254}, {"windows-1255", 1255}, {"windows-1256", 1256},
    {"windows-1257", 1257}, {"windows-1258", 1258}, {"windows-31j", 932}, {"windows-874", 874}, {"x-big5", 950},
    {"x-cp20932", 20932}, {"x-cp20936", 20936}, {"x-cp20949", 20949}, {"x-cp50222", 50222}, {"x-cp50229", 50229},
    {"x-cp708", 708}, {"x-euc-cn", 51936}, {"x-euc-jp", 51932}, {"x-euc-tw", 51950}, {"x-gbk", 936},
    {"x-iscii91", 57002}, {"x-iscii-as", 57006}, {"x-iscii-be", 57003}, {"x-iscii-de", 57002}, {"x-iscii-gu", 57010},
    {"x-iscii-ka", 57008}, {"x-iscii-ma", 57009}, {"x-iscii-or", 57007}, {"x-iscii-pa", 57011}, {"x-iscii-ta", 57004},
    {"x-iscii-te", 57005}, {"x-iso-2022-cn-cns", 50229}, {"x-iso-2022-cn-gb", 50227}, {"x-iso-8859-11", 28601},
    {"x-iso-8859-6s", 28596}, {"x-jisautodetect", 932}, {"x-ksc5601", 949}, {"x-mac-ce", 10029},
    {"x-maccentraleurope", 10029}, {"x-mac-centraleurroman", 10029}, {"x-mac-cyrillic", 10007}, {"x-mac-greek", 10006},
    {"x-mac-roman", 10000}, {"x-mac-turkish", 10081}, {"x-macukraine", 10007}, {"x-mac-ukrainian", 10017},
    {"x-ms932_0213", 932}, {"x-ms-cp932", 932}, {"x-roman8", 1051}, {"x-sjis", 932}, {"x-unicode-2-0-utf-7", 65000},
    {"x-unicode20utf8", 65001}, {"x-utf-16be", 1201}, {"x-utf-16le", 1200}, {"x-windows-1256s", 1256},
    {"x-windows-50220", 50220}, {"x-windows-50221", 50221}, {"x-windows-874", 874}, {"x-windows-950", 950},
    {"x-windows-iso2022jp", 50220}, {"x-x-big5", 950},
};
// clang-format on

constexpr bool isSorted() {
  for (u32 i = 1; i < std::size(kLabels); ++i)
    if (compare(readerOf(kLabels[i - 1].text), readerOf(kLabels[i].text)) >= 0) return false;
  return true;
}
static_assert(isSorted());

// Moves past a prefix, if it is there.
bool skip(LabelReader& label, const char* prefix) {
  LabelReader rest = label;
  for (; *prefix != 0; ++prefix)
    if (rest.next() != *prefix) return false;
  label = rest;
  return true;
}

// "cp1252", "x-cp1252", "windows-1252": a number that the table lists.
const CharsetInfo* byNumber(LabelReader label) {
  if (!skip(label, "cp") && !skip(label, "xcp") && !skip(label, "windows")) return nullptr;
  s32 number = 0;
  for (char c; (c = label.next()) != 0; number = number * 10 + (c - '0'))
    if (!isDigit(c) || number > 99'999) return nullptr;
  return charsetByCodePage(number);
}

}  // namespace

const CharsetInfo* charsetByLabel(const char* label, u32 n) {
  while (n != 0 && isSpace(label[n - 1])) --n;
  for (; n != 0 && isSpace(*label); --n) ++label;
  const LabelReader wanted(label, label + n);
  const Label* const at = std::partition_point(std::begin(kLabels), std::end(kLabels), [&](const Label& each) {
    return compare(readerOf(each.text), wanted) < 0;
  });
  if (at != std::end(kLabels) && compare(readerOf(at->text), wanted) == 0) return charsetById(at->id);
  return byNumber(wanted);
}

const Label* labels(u32& count) {
  count = static_cast<u32>(std::size(kLabels));
  return kLabels;
}

}  // namespace vk_charset
