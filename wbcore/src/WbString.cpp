#include "wbcore/WbString.h"

#include <algorithm>
#include <cwctype>

#include "wbcore/WbArray.h"

WbString::WbString(const wchar_t* text) : m_text(text ? text : L"") {}
WbString::WbString(const wchar_t* text, std::uint64_t count)
    : m_text(text ? std::wstring(text, static_cast<std::size_t>(count)) : std::wstring()) {}
WbString::WbString(const std::wstring& text) : m_text(text) {}

WbString& WbString::operator=(const wchar_t* text) {
  m_text = text ? text : L"";
  return *this;
}
WbString& WbString::operator+=(const WbString& other) {
  m_text += other.m_text;
  return *this;
}
WbString& WbString::operator+=(const wchar_t* text) {
  if (text) m_text += text;
  return *this;
}
WbString& WbString::operator+=(wchar_t c) {
  m_text += c;
  return *this;
}
WbString operator+(const WbString& a, const WbString& b) {
  WbString result(a);
  result += b;
  return result;
}
bool operator==(const WbString& a, const wchar_t* b) { return a.m_text == (b ? b : L""); }

namespace {
int Sign(int v) { return (v > 0) - (v < 0); }
}  // namespace

int WbString::Compare(const wchar_t* other) const { return Sign(m_text.compare(other ? other : L"")); }

int WbString::CompareNoCase(const wchar_t* other) const {
  const wchar_t* a = m_text.c_str();
  const wchar_t* b = other ? other : L"";
  for (;; ++a, ++b) {
    const wint_t ca = std::towlower(static_cast<wint_t>(*a));
    const wint_t cb = std::towlower(static_cast<wint_t>(*b));
    if (ca != cb) return ca < cb ? -1 : 1;
    if (ca == 0) return 0;
  }
}

void WbString::FormatVarArgs(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  m_text = WbFormatV(format, args);
  va_end(args);
}

void WbString::FormatV(const wchar_t* format, va_list args) { m_text = WbFormatV(format, args); }

void WbString::FormatFloat(double value, int precision) { Format(L"%.*g", precision, value); }

WbString& WbString::TrimLeft(const wchar_t* chars) {
  const std::size_t first = m_text.find_first_not_of(chars ? chars : L"");
  m_text.erase(0, first == std::wstring::npos ? m_text.size() : first);
  return *this;
}
WbString& WbString::TrimRight(const wchar_t* chars) {
  const std::size_t last = m_text.find_last_not_of(chars ? chars : L"");
  m_text.erase(last == std::wstring::npos ? 0 : last + 1);
  return *this;
}
WbString& WbString::Trim(const wchar_t* chars) { return TrimRight(chars).TrimLeft(chars); }

WbString WbString::Left(std::uint64_t count) const { return Mid(0, count); }
WbString WbString::Mid(std::uint64_t first, std::uint64_t count) const {
  if (first >= m_text.size()) return WbString();
  return WbString(m_text.substr(static_cast<std::size_t>(first),
                                static_cast<std::size_t>(std::min<std::uint64_t>(count, m_text.size() - first))));
}
std::int64_t WbString::Find(const wchar_t* what, std::uint64_t from) const {
  const std::size_t at = m_text.find(what ? what : L"", static_cast<std::size_t>(from));
  return at == std::wstring::npos ? -1 : static_cast<std::int64_t>(at);
}
std::int64_t WbString::Find(wchar_t c, std::uint64_t from) const {
  const std::size_t at = m_text.find(c, static_cast<std::size_t>(from));
  return at == std::wstring::npos ? -1 : static_cast<std::int64_t>(at);
}
WbString& WbString::MakeUpper() {
  for (wchar_t& c : m_text) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
  return *this;
}
WbString& WbString::MakeLower() {
  for (wchar_t& c : m_text) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
  return *this;
}

std::uint64_t WbString::SplitWords(WbObjectArrayTempl<WbString>& words, const wchar_t* separators,
                                   unsigned char keepEmpty) const {
  const std::wstring seps = separators ? separators : L"";
  std::uint64_t added = 0;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = m_text.find_first_of(seps, begin);
    const std::size_t stop = (end == std::wstring::npos) ? m_text.size() : end;
    if (stop > begin || keepEmpty) {
      words.Add(new WbString(m_text.substr(begin, stop - begin)));
      ++added;
    }
    if (end == std::wstring::npos) break;
    begin = end + 1;
  }
  return added;
}
