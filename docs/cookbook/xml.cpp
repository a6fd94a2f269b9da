// How do I get an XML file in any charset as UTF-8?
//
// A byte-order mark decides, then zero bytes in the head, then the `encoding` of the declaration. The declaration is
// left as written: whoever parses the result is told that it is UTF-8.
#include <cstdio>

#include "varnik/Varnik.h"

int main() {
  DataBuffer file;
  file.appendStr("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><city>Malm\xF6</city>\n");
  LogText log;
  if (!file.db_saveToFileUtf8("city.xml", &log)) return 1;

  DataBuffer document;
  StringBuffer named;
  if (!document.loadFileUtf8("city.xml", &log)) return 1;
  if (document.getXmlCharset(named)) std::printf("named: %s\n", named.getString());
  if (!document.convertXmlToUtf8(log)) return 1;
  std::printf("%.*s", static_cast<int>(document.size()), reinterpret_cast<const char*>(document.getData2()));
  return 0;
}

// Prints:
//   named: ISO-8859-1
//   <?xml version="1.0" encoding="ISO-8859-1"?><city>Malmö</city>
