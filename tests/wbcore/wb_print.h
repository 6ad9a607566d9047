// Readable GoogleTest failure messages for wide strings of the base library.
#pragma once

#include <wbcore/WbString.h>

#include <cstdio>
#include <ostream>

inline void PrintTo(const WbString& text, std::ostream* os) {
  *os << "L\"";
  for (const wchar_t* p = text; *p; ++p) {
    if (*p >= 0x20 && *p < 0x7f) {
      *os << static_cast<char>(*p);
    } else {
      char escape[16];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(*p));
      *os << escape;
    }
  }
  *os << '"';
}
