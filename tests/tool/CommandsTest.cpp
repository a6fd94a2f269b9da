// What each command prints, against texts from standards and other programs.
#include <gtest/gtest.h>

#include <string_view>

#include "tests/tool/Run.h"

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

struct Row {
  const char* line;
  int status;
  std::string_view out, err = "";
};

void check(const Desk& desk, const Row& row) {
  const Ran ran = desk.run(row.line);
  EXPECT_EQ(ran.status, row.status) << row.line << "\n" << ran.err;
  EXPECT_EQ(ran.out, row.out) << row.line;
  EXPECT_EQ(ran.err, row.err) << row.line;
}

constexpr Row kEncodings[] = {
    {"vkbuf encode base64 -s 'Hello, world'", 0, "SGVsbG8sIHdvcmxk"},
    {"echo 'Hello, world' | vkbuf encode base64 --chomp", 0, "SGVsbG8sIHdvcmxk"},
    {"printf 'line\\r\\n' | vkbuf encode hex --chomp", 0, "6C696E65"},
    {"vkbuf encode base64url -s '?"
     "?>>'",
     0, "Pz8-Pg"},
    {"vkbuf decode base64url -s 'Pz8-Pg'", 0,
     "?"
     "?>>"},
    {"vkbuf encode hex -s ''", 0, ""},
    {"vkbuf encode hex -s -n", 0, "2D6E"},             // an option's look does not make a text an option
    {"vkbuf encode hex -s '[1,2]'", 0, "5B312C325D"},  // nor brackets a list
    {"vkbuf encode hex -- -dash", 0, "68690A"},
    {"vkbuf encode hex ./-dash -o - | cat", 0, "68690A"},
    {"vkbuf decode hex -s '0a 0B'", 0, "\n\x0B"},
    {"printf QUJD | vkbuf decode base64 -", 0, "ABC"},
    {"vkbuf decode base64 -s 'QUI'", 0, "AB"},  // missing padding
    {"vkbuf decode base64 --ignore-garbage -s 'Q-U!JD'", 0, "ABC"},
    {"vkbuf decode base64_crEntity --ignore-garbage -s 'QU&#xD;\n!JD'", 0, "ABC"},
    {"vkbuf names fingerprint | tail -n 1 | cut -c-25", 0, "fingerprint  00:ab:ff  no\n"},
    {"vkbuf names HEX-LOWER --plain", 0, "hexlower\n"},

    // The place of a fault, and what helps.
    {"vkbuf decode base64 -s 'Pz8-Pg'", 1, "",
     "vkbuf: decode base64: '-' (0x2d) at byte 3, line 1 column 4, is not in the alphabet\n"
     "hint: this looks like base64url\n"},
    {"printf 'QUJD\\nQU!D' | vkbuf decode base64", 1, "",
     "vkbuf: decode base64: standard input: '!' (0x21) at byte 7, line 2 column 3, is not in the alphabet\n"},
    {"vkbuf decode base64 --partial -s 'QUJD!'", 1, "ABC",
     "vkbuf: decode base64: '!' (0x21) at byte 4, line 1 column 5, is not in the alphabet\n"},
    {"vkbuf decode base64 -s 'QQ==QQ=='", 1, "",
     "vkbuf: decode base64: 'Q' (0x51) at byte 4, line 1 column 5, stands behind the padding\n"},
    {"vkbuf decode hex -s '41zz42'", 1, "",
     "vkbuf: decode hex: 'z' (0x7a) at byte 2, line 1 column 3, is not in the alphabet\n"},
    {"vkbuf decode declist -s '1,256'", 1, "",
     "vkbuf: decode declist: '2' (0x32) at byte 2, line 1 column 3, does not decode\n"},
};

constexpr Row kFacts[] = {
    {"vkbuf detect city.xml", 0,
     "city.xml: 63 bytes\n"
     "  byte-order mark  none\n"
     "  XML declaration  ISO-8859-1\n"
     "  7-bit            no\n"
     "  valid UTF-8      no, first bad byte at 54\n"
     "  line endings     2 LF\n"
     "  longest line     43\n"},
    {"vkbuf detect -s 'a'", 0,
     "the text: 1 bytes\n"
     "  byte-order mark  none\n"
     "  XML declaration  none\n"
     "  7-bit            yes\n"
     "  valid UTF-8      yes\n"
     "  line endings     none\n"
     "  longest line     1\n"},
    {"vkbuf detect utf16le-nobom.xml | grep -E 'zero|decl|endings'", 0,
     "  zero bytes       as in UTF-16LE (code page 1200)\n"
     "  XML declaration  UTF-16\n"
     "  line endings     6 LF\n"},
    {"vkbuf detect utf32be-bom.xml | grep mark", 0, "  byte-order mark  UTF-32BE\n"},
    {"printf 'a\\r\\nb\\rc\\n' | vkbuf detect | grep endings", 0, "  line endings     1 CR LF, 1 LF, 1 CR\n"},
    {"vkbuf detect -s 'GrÃ¼ÃŸe' | grep valid", 0, "  valid UTF-8      yes; looks like UTF-8 encoded twice\n"},
    {"vkbuf detect -s 'Grüße' | grep valid", 0, "  valid UTF-8      yes\n"},
    {"vkbuf xml-utf8 --charset koi8-r.xml", 0, "KOI8-R\n"},
    {"vkbuf xml-utf8 --charset -s '<a/>'", 1, "", "vkbuf: xml-utf8: names no charset\n"},

    // Overlong forms, surrogates and what lies past U+10FFFF are no UTF-8.
    {"printf 'ab\\300\\200' | vkbuf detect | grep valid", 0, "  valid UTF-8      no, first bad byte at 2\n"},
    {"printf 'ab\\340\\237\\277' | vkbuf detect | grep valid", 0, "  valid UTF-8      no, first bad byte at 2\n"},
    {"printf 'ab\\355\\240\\200' | vkbuf detect | grep valid", 0, "  valid UTF-8      no, first bad byte at 2\n"},
    {"printf 'ab\\364\\220\\200\\200' | vkbuf detect | grep valid", 0, "  valid UTF-8      no, first bad byte at 2\n"},
    {"printf '\\364\\217\\277\\277\\360\\237' | vkbuf detect | grep valid", 0,
     "  valid UTF-8      no, first bad byte at 4\n"},
};

constexpr Row kChanges[] = {
    {"vkbuf convert --from utf8 --to windows-1252 -s 'ü€'", 0, "\xFC\x80"},
    {"vkbuf convert --from auto --to utf-16be --bom -s 'ü' | vkbuf encode hex", 0, "FEFF00FC"},
    {"printf '\\376\\377\\0a' | vkbuf convert --from utf-16 --to ascii", 0, "a"},
    {"vkbuf convert --from UTF32 --to utf-8 utf32be-bom.xml | head -c 5", 0, "<?xml"},
    {"vkbuf convert --from utf-8 --to latin1 -s 'one\nЖ'", 1, "",
     "vkbuf: convert: 'Ж' at line 2 has no place in latin1\nhint: --substitute carries on with a substitute for it\n"},
    {"printf 'ok\\n\\303' | vkbuf convert --from utf-8 --to latin1", 1, "",
     "vkbuf: convert: standard input: byte 0xc3 at byte 3, line 2 column 1, is no valid UTF-8\n"
     "hint: --substitute carries on with a substitute for it\n"},
    {"vkbuf convert --from utf-8 --to ascii --substitute -s 'aЖb' | wc -c", 0, "3\n"},
    {"printf '..a\\r\\n..b\\r\\n' | vkbuf clean --pop", 0, "..a\r\n.b\r\n"},
    {"printf '\\033[01;31mred\\033[0m' | vkbuf clean --colors", 0, "red"},
    {"printf 'a\\0b\\0' | vkbuf clean --nulls", 0, "ab"},
    {"vkbuf clean --accents -s 'e\xCC\x81'", 0, "é"},
    {"vkbuf clean --ascii -s 'aéb'", 0, "ab"},

    {"vkbuf find b -s abcabc", 0, "1\n"},
    {"vkbuf find --all b -s abcabc", 0, "1\n4\n"},
    {"vkbuf find --count aa -s aaaaa", 0, "2\n"},
    {"vkbuf find --from 0x2 b -s abcabc", 0, "4\n"},
    {"vkbuf find --from 9 b -s abcabc", 1, ""},
    {"printf 'a\\r\\nb\\r\\n' | vkbuf find --hex 0x0d:0a --count", 0, "2\n"},
    {"vkbuf find x -s abcabc", 1, ""},
    {"vkbuf find --count x -s abcabc", 1, "0\n"},
    {"vkbuf replace b bb -s abcabc --count", 0, "abbcabbc", "vkbuf: replace: 2 replaced\n"},
    {"vkbuf replace b '' -s abcabc", 0, "acac"},
    {"vkbuf replace --hex 62 00 -s ab | vkbuf encode hex", 0, "6100"},
    {"vkbuf replace x y -s abc", 1, "abc"},
    {"vkbuf convert --from utf-8 --to utf-16le -s 'xABy' | vkbuf replace --nocase ab Z | vkbuf convert --from utf-16le "
     "--to utf-8",
     0, "xZy"},
};

constexpr Row kBlocks[] = {
    {"printf abc | vkbuf pad --scheme 0 --block 8 | vkbuf hexdump", 0,
     "00000000: 6162 6305 0505 0505                      abc.....\n"},
    {"vkbuf pad -s abc --scheme spaces --block 8", 0, "abc     "},
    {"vkbuf pad -s abc | vkbuf unpad", 0, "abc"},
    {"vkbuf pad -s abc --scheme fips81 --block 8 | vkbuf unpad --scheme 1 --block 8", 0, "abc"},
    {"vkbuf unpad -s abcdefgh", 1, "", "vkbuf: unpad: does not end in a well-formed pad; nothing was removed\n"},
    {"vkbuf decode hex -s 'aa 02 02 02' | vkbuf tls-check", 0, "well formed: 2 bytes of padding and their length\n"},
    {"vkbuf decode hex -s '01 02 02' | vkbuf tls-check", 1, "",
     "vkbuf: tls-check: standard input: incorrect padding byte value.\n"},
    {"vkbuf tls-check -s ''", 1, "", "vkbuf: tls-check: size is 0\n"},
    {"vkbuf random 1k | wc -c", 0, "1024\n"},

    {"printf head >h; printf body >b; vkbuf join h b | vkbuf encode hex", 0, "0800000068656164626F6479"},
    {"vkbuf join h b -o whole; vkbuf split whole", 0, "header  4 bytes\nbody    4 bytes\n"},
    {"vkbuf split whole --header-out h2 --body-out - && cmp h h2", 0, "body"},
    {"vkbuf chunk whole --offset 4 --length 4", 0, "head"},
    {"vkbuf chunk whole --offset 10", 0, "dy"},
    {"printf '\\377\\377\\0\\0ab' >lying; vkbuf split lying --header-out none; test ! -e none", 0, "",
     "vkbuf: split: lying: the file ends within its header\n"},

    // As `xxd` prints it.
    {"vkbuf decode hex -s '000a7f80ff202122232425262728292a2b2c' | vkbuf hexdump", 0,
     "00000000: 000a 7f80 ff20 2122 2324 2526 2728 292a  ..... !\"#$%&'()*\n"
     "00000010: 2b2c                                     +,\n"},
};

}  // namespace

TEST(Tool, EncodesAndDecodes) {
  const Desk desk;
  desk.run("echo hi >-dash");
  for (const Row& row : kEncodings) check(desk, row);
}

TEST(Tool, TellsWhatAFileIs) {
  const Desk desk;
  desk.run("printf '<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\\n<city>Malm\\366</city>\\n' >city.xml");
  for (const Row& row : kFacts) check(desk, row);
}

TEST(Tool, ConvertsCleansAndReplaces) {
  const Desk desk;
  for (const Row& row : kChanges) check(desk, row);
}

TEST(Tool, PadsAndSplits) {
  const Desk desk;
  for (const Row& row : kBlocks) check(desk, row);
}

// Every encoding that the tool lists brings random bytes back, but for what it says about the way back.
TEST(Tool, BringsBackWhatEveryNameEncodes) {
  const Desk desk;
  EXPECT_EQ(desk.run("vkbuf names --plain | wc -l").out, "26\n");
  const Ran ran = desk.run(
      "vkbuf random 4000 | vkbuf clean --nulls -o data; for name in $(vkbuf names --plain); do "
      "test $name = qp-N && name=qp-40; vkbuf encode $name data -o text && vkbuf decode $name text | cmp - data; done");
  EXPECT_EQ(ran.out + ran.err, "");
}

// The samples as iconv reads them. It keeps the mark of UTF-8, which we drop.
TEST(Tool, TurnsTheSamplesIntoUtf8AsIconvDoes) {
  const Desk desk;
  for (const char* each :
       {"utf16le-bom.xml UTF-16", "utf16be-bom.xml UTF-16", "utf16le-nobom.xml UTF-16LE", "utf32be-bom.xml UTF-32",
        "windows-1252.xml CP1252", "shift_jis.xml SHIFT_JIS", "koi8-r.xml KOI8-R"}) {
    const Ran ran =
        desk.run("set -- "s + each + "; iconv -f $2 -t UTF-8 $1 >theirs && vkbuf xml-utf8 $1 | cmp - theirs");
    EXPECT_EQ(ran.status, 0) << each << ran.out << ran.err;
  }
  EXPECT_EQ(desk.run("tail -c +4 utf8-bom.xml >theirs && vkbuf xml-utf8 utf8-bom.xml | cmp - theirs").status, 0);
  // By its first two bytes alone this one would be UTF-16.
  EXPECT_EQ(desk.run("printf '\\377\\376\\0\\0<\\0\\0\\0a\\0\\0\\0/\\0\\0\\0>\\0\\0\\0' | vkbuf xml-utf8").out, "<a/>");
}

// Every example of every help text runs.
TEST(Tool, RunsTheExamplesOfItsHelp) {
  const Desk desk;
  desk.run("vkbuf join koi8-r.xml utf8-bom.xml -o letter.bin");
  std::istringstream commands(
      desk.run("vkbuf help | sed -n 's/^  //p' | cut -c-13 | tr -d ,; echo xml-utf8 tls-check chunk").out);
  for (std::string command; commands >> command;) {
    if (command == "NAME" || command == "N") continue;
    std::istringstream help(desk.run("vkbuf " + command + " --help").out);
    int examples = 0;
    for (std::string line; std::getline(help, line);) {
      if (!line.starts_with("  vkbuf ")) continue;
      const Ran ran = desk.run(line);
      EXPECT_EQ(ran.status, 0) << line << "\n" << ran.err;
      EXPECT_EQ(ran.err, "") << line;
      ++examples;
    }
    EXPECT_GE(examples, 2) << command;
  }
}

// The README shows the program that is built and run, and what the tool answers.
TEST(Tool, AnswersAsTheReadmeSays) {
  const std::string readme = contentOf(TREE "/README.md"), program = contentOf(TREE "/examples/first.cpp");
  EXPECT_NE(readme.find(program.substr(program.find('#'))), readme.npos);

  const Desk desk;
  desk.run("mkdir examples && ln -s .. examples/xml");
  // As a terminal shows it: with a line feed at the end, and without the carriage returns.
  std::istringstream session(readme.substr(readme.find("```console\n") + 11));
  std::string line, shown, answers;
  while (std::getline(session, line) && line != "```") {
    shown += line + "\n";
    if (!line.starts_with("$ ")) continue;
    const Ran ran = desk.run(line.substr(2) + " | tr -d '\\r'");
    answers += line + "\n" + ran.out + (ran.out.empty() || ran.out.ends_with('\n') ? "" : "\n") + ran.err;
  }
  EXPECT_EQ(answers, shown);
}
