// How do I read and write a mail subject that is not plain ASCII?
//
// Under the names `B` and `Q` stand the encoded words of RFC 2047. Reading takes either form, any known charset, and
// joins what was split over several words; the result is UTF-8.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer subject;
  if (!subject.appendEncoded("Re: =?iso-8859-1?Q?Gr=FC=DFe?= =?utf-8?B?IGF1cyBLw7Zsbg==?=", "B")) return 1;

  StringBuffer again;
  if (!subject.encodeDB("Q", again)) return 1;
  subject.appendChar(0);
  std::printf("%s\n%s\n", reinterpret_cast<const char*>(subject.getData2()), again.getString());
  return 0;
}

// Prints:
//   Re: Grüße aus Köln
//   =?utf-8?Q?Re=3A_Gr=C3=BC=C3=9Fe_aus_K=C3=B6ln?=
