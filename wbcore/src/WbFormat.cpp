// The one place where printf-style wide formats are interpreted.
//
// Messages of the suite are written with "%s" meaning a wide string, as in the wide printf
// of other platforms. glibc's vswprintf reads "%s" as a narrow string, so every conversion
// specifier is rewritten before formatting: "%s"/"%c" without a length modifier become
// "%ls"/"%lc", and the explicit narrow forms "%hs"/"%hc" become "%s"/"%c".
#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <vector>

#include "wbcore/WbString.h"

namespace {

// Bounds on the work of one format. glibc's vswprintf renders a field to its full width even
// when the buffer is long full ("%999999999d" takes minutes), so the widths and precisions are
// read before any rendering: each at most kMaxField, and the whole result at most kMaxLength
// characters by an upper estimate made from the arguments themselves.
constexpr long long kMaxField = 1 << 16;
constexpr std::size_t kMaxLength = std::size_t(1) << 24;
// Characters a number can take besides its width and precision: the 4933 integer digits of
// the largest long double in %Lf, sign, point, exponent, grouping.
constexpr std::size_t kNumberLength = 8192;

bool IsFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0' || c == L'\''; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLengthChar(wchar_t c) {
  return c == L'h' || c == L'l' || c == L'L' || c == L'q' || c == L'j' || c == L'z' || c == L't';
}

// One conversion of a format: its width and precision (kNone, kStar for '*', else the digits,
// saturated above kMaxField), length modifier and conversion character.
struct Conversion {
  static constexpr long long kNone = -1;
  static constexpr long long kStar = -2;
  long long width = kNone;
  long long precision = kNone;
  std::wstring length;
  wchar_t conversion = 0;
};

// The format with the wide convention made explicit, and what its conversions ask for.
struct ParsedFormat {
  std::wstring platform;
  std::vector<Conversion> conversions;
  std::size_t literals = 0;  // characters outside conversions
  bool positional = false;   // "%1$d" style arguments
};

long long ReadNumber(const wchar_t*& p) {
  long long value = 0;
  for (; IsDigit(*p); ++p) value = value > kMaxField ? value : value * 10 + (*p - L'0');
  return value;
}

// Copies the flags, width and precision of a conversion at p, noting them in c.
void CopyFieldSpec(const wchar_t*& p, ParsedFormat& parsed, Conversion& c) {
  const wchar_t* from = p;
  for (const wchar_t* q = p; IsDigit(*q); ++q) {
    if (q[1] == L'$') parsed.positional = true;
  }
  while (*p && (IsFlag(*p) || IsDigit(*p) || *p == L'$')) {
    if (IsDigit(*p) && *p != L'0') {
      const long long value = ReadNumber(p);
      if (*p != L'$') c.width = value;
      continue;
    }
    ++p;
  }
  if (*p == L'*') {
    c.width = Conversion::kStar;
    for (++p; IsDigit(*p) || *p == L'$'; ++p) parsed.positional = parsed.positional || *p == L'$';
  }
  if (*p == L'.') {
    ++p;
    if (*p == L'*') {
      c.precision = Conversion::kStar;
      for (++p; IsDigit(*p) || *p == L'$'; ++p) parsed.positional = parsed.positional || *p == L'$';
    } else {
      c.precision = ReadNumber(p);
    }
  }
  parsed.platform.append(from, p);
}

ParsedFormat Parse(const wchar_t* format) {
  ParsedFormat parsed;
  std::wstring& out = parsed.platform;
  for (const wchar_t* p = format; *p;) {
    if (*p != L'%') {
      out += *p++;
      ++parsed.literals;
      continue;
    }
    out += *p++;
    if (*p == L'%') {
      out += *p++;
      ++parsed.literals;
      continue;
    }
    Conversion c;
    CopyFieldSpec(p, parsed, c);
    while (*p && IsLengthChar(*p)) c.length += *p++;
    if (!*p) {
      out += c.length;
      break;
    }
    c.conversion = *p++;
    const bool text = (c.conversion == L's' || c.conversion == L'c');
    if (text && c.length.empty()) {
      out += L'l';
    } else if (!(text && c.length == L"h")) {
      out += c.length;  // "%hs" keeps its narrow meaning: the modifier is dropped
    }
    out += c.conversion;
    parsed.conversions.push_back(c);
  }
  return parsed;
}

// The length of a string, reading at most `most` characters (a precision may end a string
// that has no terminator).
template <class C>
std::size_t BoundedLength(const C* text, std::size_t most) {
  std::size_t n = 0;
  while (n < most && text[n]) ++n;
  return n;
}

// Takes the argument of conversion c from args (the walk must follow the C promotion rules to
// stay in step) and returns the most characters it renders to, before width and precision.
// false for a conversion whose argument is not known.
bool TakeArgument(const Conversion& c, va_list& args, std::size_t& content) {
  const std::wstring& l = c.length;
  const bool longDouble = l == L"L";
  const bool wide = l.empty() || l == L"l";  // wide convention: "%s" is wide, "%hs" narrow
  switch (c.conversion) {
    case L'd': case L'i': case L'o': case L'u': case L'x': case L'X':
      if (l == L"l") (void)va_arg(args, long);
      else if (l == L"ll" || l == L"q" || l == L"L") (void)va_arg(args, long long);
      else if (l == L"j") (void)va_arg(args, std::intmax_t);
      else if (l == L"z") (void)va_arg(args, std::size_t);
      else if (l == L"t") (void)va_arg(args, std::ptrdiff_t);
      else (void)va_arg(args, int);
      content = kNumberLength;
      return true;
    case L'e': case L'E': case L'f': case L'F': case L'g': case L'G': case L'a': case L'A':
      if (longDouble) (void)va_arg(args, long double);
      else (void)va_arg(args, double);
      content = kNumberLength;
      return true;
    case L'c':  // a wide or narrow character, promoted to int either way
      (void)va_arg(args, int);
      content = 1;
      return true;
    case L's': {
      // A precision only cuts a string short; past kMaxField it is read to its end.
      const std::size_t most = c.precision >= 0 && c.precision <= kMaxField ? std::size_t(c.precision) : SIZE_MAX;
      if (wide) {
        const wchar_t* text = va_arg(args, const wchar_t*);
        content = text ? BoundedLength(text, most) : 6;  // "(null)"
      } else {
        const char* text = va_arg(args, const char*);
        content = text ? BoundedLength(text, most) : 6;
      }
      return true;
    }
    case L'p': case L'n':
      (void)va_arg(args, void*);
      content = 32;
      return true;
    default:
      return false;
  }
}

// An upper bound of the rendered length, or 0 when the format is refused: a width or precision
// above kMaxField, '*' with positional arguments, a conversion the walk does not know, or a
// bound above kMaxLength.
std::size_t LengthBound(const ParsedFormat& parsed, va_list args) {
  std::size_t bound = parsed.literals + 1;
  if (parsed.positional) {
    // The arguments cannot be walked in order: only the digits in the format are bounded.
    for (const Conversion& c : parsed.conversions) {
      if (c.width == Conversion::kStar || c.precision == Conversion::kStar) return 0;
      if (c.width > kMaxField || (c.precision > kMaxField && c.conversion != L's')) return 0;
      const long long precision = c.precision <= kMaxField ? c.precision : 0;
      bound += std::size_t(std::max(c.width, 0LL)) + std::size_t(std::max(precision, 0LL)) + kNumberLength;
    }
    return bound <= kMaxLength ? bound : 0;
  }
  va_list walk;
  va_copy(walk, args);
  for (Conversion c : parsed.conversions) {
    if (c.width == Conversion::kStar) {
      const int value = va_arg(walk, int);
      c.width = value < 0 ? -static_cast<long long>(value) : value;  // negative: left-justified
    }
    if (c.precision == Conversion::kStar) {
      const int value = va_arg(walk, int);
      c.precision = value < 0 ? Conversion::kNone : value;  // negative: as if omitted
    }
    std::size_t content = 0;
    const bool fieldTooWide = c.width > kMaxField || (c.precision > kMaxField && c.conversion != L's');
    if (fieldTooWide || !TakeArgument(c, walk, content)) {
      bound = 0;
      break;
    }
    if (c.conversion != L's' && c.precision > 0) content += std::size_t(c.precision);
    bound += std::max(content, std::size_t(std::max(c.width, 0LL)));
    if (bound > kMaxLength) {
      bound = 0;
      break;
    }
  }
  va_end(walk);
  return bound;
}

}  // namespace

// The result is rendered once, into a buffer of the estimated length. Only a positional format,
// whose strings were not measured, may need a larger buffer: it grows up to kMaxLength. A
// refused format, or one that vswprintf cannot render (an encoding error in a narrow string,
// say), gives the format text itself, so that a failing message still shows what it was about.
std::wstring WbFormatV(const wchar_t* format, va_list args) {
  if (!format) return std::wstring();
  const ParsedFormat parsed = Parse(format);
  const std::size_t bound = LengthBound(parsed, args);
  if (bound == 0) return format;
  std::vector<wchar_t> buffer(std::max<std::size_t>(bound, 256));
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    const int written = std::vswprintf(buffer.data(), buffer.size(), parsed.platform.c_str(), copy);
    va_end(copy);
    if (written >= 0 && static_cast<std::size_t>(written) < buffer.size()) {
      return std::wstring(buffer.data(), static_cast<std::size_t>(written));
    }
    if (!parsed.positional || buffer.size() >= kMaxLength) return format;
    buffer.resize(std::min(buffer.size() * 4, kMaxLength));
  }
}
