// The one place where printf-style wide formats are interpreted.
//
// Messages of the suite are written with "%s" meaning a wide string, as in the wide printf
// of other platforms. glibc's vswprintf reads "%s" as a narrow string, so every conversion
// specifier is rewritten before formatting: "%s"/"%c" without a length modifier become
// "%ls"/"%lc", and the explicit narrow forms "%hs"/"%hc" become "%s"/"%c".
#include "WbFormat.h"

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
// Formats longer than this are converted on the heap only.
constexpr std::size_t kStackFormatCapacity = 1024;

bool IsFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0' || c == L'\''; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsLengthChar(wchar_t c) {
  return c == L'h' || c == L'l' || c == L'L' || c == L'q' || c == L'j' || c == L'z' || c == L't';
}

// One conversion of a format: its width and precision (kNone, kStar for '*', else the digits,
// saturated above kMaxField), length modifier and conversion character. Held without memory of
// its own: a modifier longer than any valid one ("hh", "ll") is kept as unknown.
struct Conversion {
  static constexpr long long kNone = -1;
  static constexpr long long kStar = -2;
  long long width = kNone;
  long long precision = kNone;
  wchar_t length[3] = {};
  bool lengthKnown = true;
  wchar_t conversion = 0;

  bool LengthIs(const wchar_t* modifier) const { return lengthKnown && std::wcscmp(length, modifier) == 0; }
};

long long ReadNumber(const wchar_t*& p) {
  long long value = 0;
  for (; IsDigit(*p); ++p) value = value > kMaxField ? value : value * 10 + (*p - L'0');
  return value;
}

// Whether the format takes its arguments by position ("%1$d", "%*2$d"): their types cannot then
// be walked in order.
bool IsPositional(const wchar_t* format) {
  for (const wchar_t* p = format; *p; ++p) {
    if (*p != L'%') continue;
    if (p[1] == L'%') {
      ++p;
      continue;
    }
    for (const wchar_t* q = p + 1; IsFlag(*q) || IsDigit(*q) || *q == L'$' || *q == L'*' || *q == L'.'; ++q) {
      if (*q == L'$') return true;
    }
  }
  return false;
}

// Reads the flags, width and precision of a conversion at p into c, writing them through put.
template <class Put>
bool CopyFieldSpec(const wchar_t*& p, Conversion& c, Put& put) {
  const wchar_t* from = p;
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
    for (++p; IsDigit(*p) || *p == L'$'; ++p) {
    }
  }
  if (*p == L'.') {
    ++p;
    if (*p == L'*') {
      c.precision = Conversion::kStar;
      for (++p; IsDigit(*p) || *p == L'$'; ++p) {
      }
    } else {
      c.precision = ReadNumber(p);
    }
  }
  for (const wchar_t* q = from; q != p; ++q) {
    if (!put(*q)) return false;
  }
  return true;
}

// Walks the format once: writes its platform form through put(c) (false when it can take no
// more) and hands every conversion to take(c) (false to refuse the format). Counts the
// characters outside conversions in literals. Returns false when put or take refused.
template <class Put, class Take>
bool Translate(const wchar_t* format, Put put, Take take, std::size_t& literals) {
  for (const wchar_t* p = format; *p;) {
    if (*p != L'%') {
      if (!put(*p++)) return false;
      ++literals;
      continue;
    }
    if (!put(*p++)) return false;
    if (*p == L'%') {
      if (!put(*p++)) return false;
      ++literals;
      continue;
    }
    Conversion c;
    if (!CopyFieldSpec(p, c, put)) return false;
    const wchar_t* length = p;
    while (*p && IsLengthChar(*p)) ++p;
    const std::size_t lengthSize = static_cast<std::size_t>(p - length);
    c.lengthKnown = lengthSize < 3;
    if (c.lengthKnown) std::copy(length, p, c.length);
    c.conversion = *p;
    const bool text = (c.conversion == L's' || c.conversion == L'c');
    if (text && lengthSize == 0) {
      if (!put(L'l')) return false;
    } else if (!(text && c.LengthIs(L"h"))) {
      for (const wchar_t* q = length; q != p; ++q) {  // "%hs" keeps its narrow meaning: "h" dropped
        if (!put(*q)) return false;
      }
    }
    if (!c.conversion) break;
    if (!put(*p++)) return false;
    if (!take(c)) return false;
  }
  return true;
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
  if (!c.lengthKnown) return false;
  const bool wide = c.LengthIs(L"") || c.LengthIs(L"l");  // wide convention: "%s" is wide, "%hs" narrow
  switch (c.conversion) {
    case L'd': case L'i': case L'o': case L'u': case L'x': case L'X':
      if (c.LengthIs(L"l")) (void)va_arg(args, long);
      else if (c.LengthIs(L"ll") || c.LengthIs(L"q") || c.LengthIs(L"L")) (void)va_arg(args, long long);
      else if (c.LengthIs(L"j")) (void)va_arg(args, std::intmax_t);
      else if (c.LengthIs(L"z")) (void)va_arg(args, std::size_t);
      else if (c.LengthIs(L"t")) (void)va_arg(args, std::ptrdiff_t);
      else (void)va_arg(args, int);
      content = kNumberLength;
      return true;
    case L'e': case L'E': case L'f': case L'F': case L'g': case L'G': case L'a': case L'A':
      if (c.LengthIs(L"L")) (void)va_arg(args, long double);
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

// An upper bound of the rendered length, built conversion by conversion; 0 once the format is
// refused: a width or precision above kMaxField, '*' with positional arguments, a conversion
// the walk does not know, or a bound above kMaxLength. A positional format cannot be walked in
// order: only the digits in the format are bounded, and its strings are not measured.
class LengthBound {
 public:
  LengthBound(bool positional, va_list args) : m_positional(positional) { va_copy(m_walk, args); }
  ~LengthBound() { va_end(m_walk); }
  LengthBound(const LengthBound&) = delete;
  LengthBound& operator=(const LengthBound&) = delete;

  bool Take(Conversion c) {
    if (m_bound == 0) return false;
    std::size_t content = kNumberLength;
    if (m_positional) {
      if (c.width == Conversion::kStar || c.precision == Conversion::kStar) return Refuse();
      if (c.precision > kMaxField && c.conversion == L's') c.precision = 0;
    } else {
      if (c.width == Conversion::kStar) {
        const int value = va_arg(m_walk, int);
        c.width = value < 0 ? -static_cast<long long>(value) : value;  // negative: left-justified
      }
      if (c.precision == Conversion::kStar) {
        const int value = va_arg(m_walk, int);
        c.precision = value < 0 ? Conversion::kNone : value;  // negative: as if omitted
      }
    }
    const bool fieldTooWide = c.width > kMaxField || (c.precision > kMaxField && c.conversion != L's');
    if (fieldTooWide || (!m_positional && !TakeArgument(c, m_walk, content))) return Refuse();
    if (m_positional || (c.conversion != L's' && c.precision > 0)) content += std::size_t(std::max(c.precision, 0LL));
    m_bound += m_positional ? content + std::size_t(std::max(c.width, 0LL))
                            : std::max(content, std::size_t(std::max(c.width, 0LL)));
    return m_bound <= kMaxLength || Refuse();
  }
  // The bound with the literal characters and the terminator, or 0 when refused.
  std::size_t Total(std::size_t literals) const {
    return m_bound == 0 || m_bound + literals + 1 > kMaxLength ? 0 : m_bound + literals + 1;
  }

 private:
  bool Refuse() {
    m_bound = 0;
    return false;
  }
  bool m_positional;
  va_list m_walk;
  std::size_t m_bound = 1;  // kept above 0 until refused; Total adds the terminator instead
};

}  // namespace

bool wbcore_detail::FormatInto(wchar_t* out, std::size_t capacity, const wchar_t* format, va_list args) noexcept {
  if (capacity == 0) return false;
  out[0] = L'\0';
  if (!format) return true;
  wchar_t platformFormat[kStackFormatCapacity];
  std::size_t used = 0, literals = 0;
  LengthBound bound(IsPositional(format), args);
  const bool converted = Translate(
      format,
      [&](wchar_t c) {
        if (used + 1 >= kStackFormatCapacity) return false;
        platformFormat[used++] = c;
        return true;
      },
      [&](const Conversion& c) { return bound.Take(c); }, literals);
  if (!converted || bound.Total(literals) == 0) return false;
  platformFormat[used] = L'\0';
  va_list copy;
  va_copy(copy, args);
  const int written = std::vswprintf(out, capacity, platformFormat, copy);
  va_end(copy);
  if (written >= 0 && static_cast<std::size_t>(written) < capacity) return true;
  out[0] = L'\0';
  return false;
}

// The result is rendered once, into a buffer of the estimated length. Only a positional format,
// whose strings were not measured, may need a larger buffer: it grows up to kMaxLength. A
// refused format, or one that vswprintf cannot render (an encoding error in a narrow string,
// say), gives the format text itself, so that a failing message still shows what it was about.
std::wstring WbFormatV(const wchar_t* format, va_list args) {
  if (!format) return std::wstring();
  const bool positional = IsPositional(format);
  std::wstring platformFormat;
  std::size_t literals = 0;
  LengthBound bound(positional, args);
  Translate(
      format,
      [&](wchar_t c) {
        platformFormat += c;
        return true;
      },
      [&](const Conversion& c) { return bound.Take(c); }, literals);
  const std::size_t total = bound.Total(literals);
  if (total == 0) return format;
  std::vector<wchar_t> buffer(std::max<std::size_t>(total, 256));
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    const int written = std::vswprintf(buffer.data(), buffer.size(), platformFormat.c_str(), copy);
    va_end(copy);
    if (written >= 0 && static_cast<std::size_t>(written) < buffer.size()) {
      return std::wstring(buffer.data(), static_cast<std::size_t>(written));
    }
    if (!positional || buffer.size() >= kMaxLength) return format;
    buffer.resize(std::min(buffer.size() * 4, kMaxLength));
  }
}
