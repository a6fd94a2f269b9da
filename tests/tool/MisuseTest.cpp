// What goes wrong ends in one line on standard error (and a hint), the right status, and nothing written.
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/tool/Run.h"

namespace {

struct Row {
  const char* line;
  int status;
  const char* message;  // how the first line begins
};

constexpr Row kMisuses[] = {
    {"vkbuf encod", 2, "vkbuf: no command is called 'encod'; nearest: encode, "},
    {"vkbuf encode", 2, "vkbuf: encode: NAME is required"},
    {"vkbuf encode bse64 -s x -o out", 2, "vkbuf: no encoding is called 'bse64'; nearest: base64, base-64, base58"},
    {"vkbuf encode Fingerprint -s x", 2, "vkbuf: no encoding is called 'Fingerprint'; nearest: fingerprint, "},
    {"vkbuf decode bse64 -s x -o out", 2, "vkbuf: no encoding is called"},
    {"vkbuf names bse64", 2, "vkbuf: no encoding is called 'bse64'"},
    {"vkbuf hexdump --lenght 3", 2, "vkbuf: hexdump: no option is called '--lenght'"},
    {"vkbuf hexdump koi8-r.xml other", 2, "vkbuf: hexdump: 'other' is one operand too many"},
    {"vkbuf hexdump koi8-r.xml -s text", 2, "vkbuf: hexdump: give either -s TEXT or a FILE"},
    {"vkbuf hexdump koi8-r.xml -o", 2, "vkbuf: hexdump: "},
    {"vkbuf clean koi8-r.xml", 2, "vkbuf: clean: say what to clean"},
    {"vkbuf clean --nulls koi8-r.xml shift_jis.xml -o out", 2, "vkbuf: clean: 'shift_jis.xml' is one file too many"},
    {"vkbuf convert --from utf-8 koi8-r.xml", 2, "vkbuf: convert: --to is required"},
    {"vkbuf convert --from utf-8 --to windows-1522 -s a -o out", 2,
     "vkbuf: no charset is called 'windows-1522'; nearest: windows-1252"},
    {"vkbuf convert --from nonsense --to utf-8 nofile", 2, "vkbuf: no charset is called 'nonsense'"},
    {"vkbuf find '' -s a", 2, "vkbuf: find: the pattern is empty"},
    {"vkbuf find --hex 0g -s a", 2, "vkbuf: find: '0g' is not made of pairs of hex digits"},
    {"vkbuf find --from -1 a -s a", 2, "vkbuf: find: --from: '-1' is no offset"},
    {"vkbuf pad --block 9 -s a -o out", 2, "vkbuf: pad: --block: 9 not in {8,16}"},
    {"vkbuf pad --scheme 5 -s a -o out", 2, "vkbuf: no scheme is called '5'"},
    {"vkbuf unpad --scheme 3 -s a -o out", 2, "vkbuf: unpad: a pad of scheme 3 does not tell its length"},
    {"vkbuf chunk koi8-r.xml --offset 1T -o out", 2, "vkbuf: chunk: --offset: '1T' is no count"},
    {"vkbuf chunk koi8-r.xml --length 0 -o out", 2, "vkbuf: chunk: --length: 0 bytes are no chunk"},
    {"vkbuf random 4G -o out", 2, "vkbuf: random: '4G' is no count of bytes below 4 GiB"},
    {"vkbuf clean --nulls --in-place", 2, "vkbuf: clean: --in-place needs the names of files"},

    {"vkbuf encode hex nofile -o out", 2, "vkbuf: encode hex: nofile: No such file or directory"},
    {"vkbuf encode hex . -o out", 2, "vkbuf: encode hex: .: Is a directory"},
    {"vkbuf chunk . -o out", 2, "vkbuf: chunk: .: Is a directory"},
    {"mkfifo pipe; vkbuf chunk pipe -o out", 2, "vkbuf: chunk: pipe: is no regular file"},
    {"truncate -s 4294967264 large; vkbuf encode qp large -o out", 2,
     "vkbuf: encode qp: large: longer than 4 GiB - 33 bytes"},
    {"rm large; vkbuf encode hex -s a -o nofolder/x", 2,
     "vkbuf: encode hex: nofolder/x: the file cannot be written: No such file"},
    {"vkbuf encode hex -s a -o .", 2, "vkbuf: encode hex: .: Is a directory"},
    {"vkbuf encode hex -s a >/dev/full", 2, "vkbuf: encode hex: standard output: No space left on device"},
    {"vkbuf encode hex -s a >&-", 2, "vkbuf: encode hex: standard output: Bad file descriptor"},
    {"vkbuf encode hex <&-", 2, "vkbuf: encode hex: standard input: Bad file descriptor"},

    {"vkbuf decode hex -s 0z -o out", 1, "vkbuf: decode hex: 'z' (0x7a) at byte 1"},
    {"vkbuf convert --from utf-8 --to latin1 -s Ж -o out", 1, "vkbuf: convert: 'Ж' at line 1"},
    {"printf '\\377' | vkbuf convert --from auto --to utf-8 -o out", 1,
     "vkbuf: convert: standard input: no charset is obvious"},
    {"printf '<a>\\374</a>' | vkbuf xml-utf8 -o out", 1, "vkbuf: xml-utf8: standard input: names no charset"},
    {"vkbuf unpad -s abc -o out", 1, "vkbuf: unpad: does not end in a well-formed pad"},
    {"vkbuf split koi8-r.xml --body-out out", 1, "vkbuf: split: koi8-r.xml: "},
    {"printf ab >short; vkbuf split short --body-out out", 1,
     "vkbuf: split: short: the file is shorter than the length of its header"},
    {"vkbuf chunk koi8-r.xml --offset 1M -o out", 1, "vkbuf: chunk: koi8-r.xml: nothing to read at offset 1048576"},
};

std::size_t linesIn(const std::string& text) {
  std::size_t n = 0;
  for (const char c : text) n += c == '\n';
  return n;
}

}  // namespace

TEST(Tool, AnswersMisuseWithOneLineAndWritesNothing) {
  const Desk desk;
  for (const Row& row : kMisuses) {
    const Ran ran = desk.run(row.line);
    EXPECT_EQ(ran.status, row.status) << row.line;
    EXPECT_EQ(ran.out, "") << row.line;
    EXPECT_TRUE(ran.err.starts_with(row.message)) << row.line << "\n" << ran.err;
    EXPECT_TRUE(linesIn(ran.err) == 1 || (linesIn(ran.err) == 2 && ran.err.find("\nhint: ") != ran.err.npos))
        << ran.err;
    EXPECT_FALSE(std::filesystem::exists(desk.at("out"))) << row.line;
  }
  // Where permission was refused; the superuser is refused nothing.
  if (geteuid() != 0) {
    const Ran ran = desk.run("chmod 0 koi8-r.xml; vkbuf encode hex koi8-r.xml");
    EXPECT_EQ(ran.status, 2);
    EXPECT_EQ(ran.err, "vkbuf: encode hex: koi8-r.xml: Permission denied\n");
  }
}

TEST(Tool, KeepsTheOldFileWhenItFails) {
  const Desk desk;
  const std::string before = contentOf(desk.at("koi8-r.xml"));
  EXPECT_EQ(desk.run("vkbuf decode hex koi8-r.xml -o koi8-r.xml").status, 1);
  EXPECT_EQ(desk.run("vkbuf encode hex -s a -o koi8-r.xml --no-clobber").status, 2);
  EXPECT_EQ(desk.run("vkbuf convert --from utf-8 --to latin1 --in-place koi8-r.xml").status, 1);
  EXPECT_EQ(desk.run("vkbuf replace --in-place nowhere x koi8-r.xml").status, 1);
  EXPECT_EQ(contentOf(desk.at("koi8-r.xml")), before);
}

TEST(Tool, RewritesInPlaceAndOntoItsInput) {
  const Desk desk;
  EXPECT_EQ(desk.run("vkbuf encode hex koi8-r.xml -o koi8-r.xml && head -c 4 koi8-r.xml").out, "3C3F");
  // The file that fails does not keep the next from its turn.
  const Ran ran = desk.run("vkbuf xml-utf8 --in-place windows-1252.xml nofile shift_jis.xml && echo done");
  EXPECT_EQ(ran.err, "vkbuf: xml-utf8: nofile: No such file or directory\n");
  EXPECT_EQ(ran.status, 2);
  EXPECT_EQ(desk.run("iconv -f utf-8 -t utf-8 windows-1252.xml shift_jis.xml | grep -c '€\\|東京'").out, "2\n");
}

TEST(Tool, HelpsOnOneScreen) {
  const Desk desk;
  const Ran help = desk.run("vkbuf --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_LE(linesIn(help.out), 24u);
  EXPECT_EQ(desk.run("vkbuf --help | grep -c '.\\{81\\}'").out, "0\n");
  const Ran bare = desk.run("vkbuf");
  EXPECT_EQ(bare.status, 2);
  EXPECT_EQ(bare.out, "");
  EXPECT_EQ(bare.err, help.out);
  EXPECT_EQ(desk.run("vkbuf -V").out, desk.run("vkbuf find --version").out);
}

// A reader that leaves early ends the tool by the signal, in silence.
TEST(Tool, DiesQuietlyOfABrokenPipe) {
  const Desk desk;
  const Ran ran = desk.run("{ vkbuf random 4M; echo $? >status; } | head -c 1 >/dev/null; cat status");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(ran.out, "141\n");
}
