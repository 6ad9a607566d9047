// WbString: the wide-format convention of the formatter, FormatFloat, trimming, splitting and
// the comparison and search helpers.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

using Texts = std::pair<WbString, WbString>;
using Ints = std::vector<std::int64_t>;

template <class... Args>
WbString Fmt(const wchar_t* format, const Args&... args) {
  return WbString::Formatted(format, args...);
}
std::int64_t Length(const WbString& text) { return std::int64_t(text.GetLength()); }

// In a format, %s takes a wide string, with width, precision and flags; an explicit "%ls" keeps
// its wide meaning, "%hs" and "%hc" are the narrow forms. Characters outside ASCII pass through
// unchanged (translations are not ASCII), length modifiers of numbers survive the rewriting,
// and an output longer than the first buffer, by the text, the width or a few characters, is
// complete (each %c counts in the length reserved).
TEST(WbStringFormat, PercentSTakesAWideStringAndOutputHasNoLengthLimit) {
  WbString text;
  text.Format(L"Unsupported length unit '%s'. Possible values are : %s", WbString(L"mm"), L"m, mm");
  EXPECT_EQ(text, L"Unsupported length unit 'mm'. Possible values are : m, mm");
  const std::wstring block(5000, L'x');
  const Texts rows[] = {{Fmt(L"[%-8s]", L"abc"), L"[abc     ]"},   {Fmt(L"[%8s]", L"abc"), L"[     abc]"},
                        {Fmt(L"[%.3s]", L"abcdef"), L"[abc]"},     {Fmt(L"[%-6.2s]", L"abcdef"), L"[ab    ]"},
                        {Fmt(L"[%*s]", 5, L"ab"), L"[   ab]"},     {Fmt(L"%c%c", L'o', L'k'), L"ok"},
                        {Fmt(L"100%% of %d%%", 5), L"100% of 5%"}, {Fmt(nullptr), L""}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
  EXPECT_EQ(Fmt(L"%s|%c", L"\u00e9t\u00e9", L'\u00b0'), L"\u00e9t\u00e9|\u00b0");
  EXPECT_EQ(Fmt(L"%ls+%hs+%hc", L"wide", "narrow", 'n'), L"wide+narrow+n");
  EXPECT_EQ(Fmt(L"%llu %ld %5.2f %g", 18446744073709551615ull, -7L, 3.14159, 0.5),
            L"18446744073709551615 -7  3.14 0.5");
  EXPECT_EQ(Fmt(L"<%s>", block.c_str()), WbString(L"<" + block + L">"));
  EXPECT_EQ(Fmt(L"%1000d", 42), WbString(std::wstring(998, L' ') + L"42"));
  EXPECT_EQ(Fmt(L"%300s%c%c", L"x", L'y', L'z'), WbString(std::wstring(299, L' ') + L"xyz"));
}

// Each refused format once ran for seconds to minutes in vswprintf and returned an empty string.
// Widths and number precisions above 65536, from digits or '*', are refused at once, as are '*'
// with positional arguments, %m (no argument walk for it) and a narrow %hs that is not text in
// the C locale. Accepted: the limits themselves, a negative '*' width (left-justified) and
// precision (omitted), a long string precision that only cuts the string, positional arguments.
TEST(WbStringFormat, WorkIsBoundedAndARefusedFormatComesBackAsItsText) {
  const Texts rows[] = {{Fmt(L"%999999999d", 1), L"%999999999d"}, {Fmt(L"[%.999999999f]", 1.0), L"[%.999999999f]"},
                        {Fmt(L"%*d", 2000000000, 1), L"%*d"},     {Fmt(L"%65537x", 1u), L"%65537x"},
                        {Fmt(L"%1$*2$d", 5, 3), L"%1$*2$d"},      {Fmt(L"%m"), L"%m"},
                        {Fmt(L"%hs", "\xff\xfe"), L"%hs"},        {Fmt(L"%*d|%.*f", -3, 7, -1, 0.5), L"7  |0.500000"},
                        {Fmt(L"%.999999999s", L"abc"), L"abc"},   {Fmt(L"%2$s %1$d", 5, L"ab"), L"ab 5"}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
  // %.65536f of 1e308: its 309 integer digits, the point and 65536 decimals. The largest long
  // double has 4933 integer digits; %Lf adds the point and 6 decimals.
  EXPECT_EQ((Ints{Length(Fmt(L"%65536d", 1)), Length(Fmt(L"%.65536f", 1e308)),
                  Length(Fmt(L"%Lf", 1.18973149535723176502e+4932L))}),
            (Ints{65536, 309 + 1 + 65536, 4933 + 7}));
}

// Python: '%.16g' % 0.1 -> '0.1'; '%.16g' % 1e32 -> '1e+32';
// '%.16g' % -1.0000000331813535e32 -> '-1.000000033181354e+32' (the widened invalid marker).
// Mid and Left clamp at the end.
TEST(WbStringEdit, FormatFloatMidLeftAndUpper) {
  std::vector<WbString> floats;
  for (double value : {0.1, 1e32, -1.0000000331813535e32, 1.0 / 3.0, 200000.0}) {
    floats.emplace_back();
    floats.back().FormatFloat(value, 16);
  }
  EXPECT_EQ(floats,
            (std::vector<WbString>{L"0.1", L"1e+32", L"-1.000000033181354e+32", L"0.3333333333333333", L"200000"}));
  const WbString path(L"mm/ms/mm");
  WbString kg(L"Kg");
  const Texts rows[] = {{path.Mid(3), L"ms/mm"}, {path.Mid(3, 2), L"ms"}, {path.Mid(6, 100), L"mm"}, {path.Mid(8), L""},
                        {path.Left(0), L""},     {path.Left(99), path},   {kg.MakeUpper(), L"KG"}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
}

// Trimming removes the given characters (white space by default, none for "") from one or both
// ends; inner blanks stay.
TEST(WbStringEdit, Trim) {
  using Three = std::vector<WbString>;
  const wchar_t* blanks = L" \t value  x \r\n";
  EXPECT_EQ((Three{WbString(blanks).TrimLeft(), WbString(blanks).TrimRight(), WbString(blanks).Trim()}),
            (Three{L"value  x \r\n", L" \t value  x", L"value  x"}));
  const struct {
    const wchar_t *text, *chars;
    Three trimmed;
  } rows[] = {{L"--a-b--", L"-", {L"a-b--", L"--a-b", L"a-b"}},
              {L" \t\r\n ", L" \t\r\n", {L"", L"", L""}},
              {L"abc", L"", {L"abc", L"abc", L"abc"}}};
  for (const auto& r : rows) {
    WbString left(r.text), right(r.text), both(r.text);
    EXPECT_EQ((Three{left.TrimLeft(r.chars), right.TrimRight(r.chars), both.Trim(r.chars)}), r.trimmed) << r.text;
  }
}

// Runs of separators give no empty words unless they are kept: then one between each pair of
// adjacent separators and at either end. Words are appended to what the array holds.
TEST(WbStringEdit, SplitWords) {
  const struct {
    const wchar_t *text, *separators;
    unsigned char keepEmpty;
    std::uint64_t count;
    const wchar_t* words;
  } rows[] = {{L"  UNIT\tmm  T \ts ", L" \t", 0, 4, L"<UNIT><mm><T><s>"},
              {L" a  b", L" \t", 1, 4, L"<><a><><b>"},
              {L"a,,b,", L",", 1, 4, L"<a><><b><>"},
              {L"x;y z", L"; ", 0, 3, L"<x><y><z>"},
              {L"", L" \t", 0, 0, L""},
              {L" \t ", L" \t", 0, 0, L""}};
  for (const auto& r : rows) {
    WbObjectArrayTempl<WbString> words;
    EXPECT_EQ(WbString(r.text).SplitWords(words, r.separators, r.keepEmpty), r.count) << r.text;
    EXPECT_EQ(Join(words), r.words);
  }
  WbObjectArrayTempl<WbString> words;
  WbString(L"a b").SplitWords(words);
  EXPECT_EQ(WbString(L"d").SplitWords(words), 1u);
  EXPECT_EQ(Join(words), L"<a><b><d>");
}

// 'a' (97) sorts after 'B' (66) by code, before it without case; a longer string sorts after its
// prefix. Find gives -1 when the text is absent or the start is past the end.
TEST(WbStringCompare, EqualityOrderingAndSearch) {
  EXPECT_TRUE(WbString(L"Length") == L"Length" && WbString(L"Length") != WbString(L"length"));
  EXPECT_TRUE(WbString(nullptr) == L"" && WbString(nullptr).IsEmpty());
  const WbString hello(L"Hello"), abc(L"abc"), abcd(L"ABCD"), a(L"a"), path(L"mm/ms/mm");
  EXPECT_EQ((Ints{hello.CompareNoCase(L"hELLO"), abc.CompareNoCase(L"ABD"), abcd.CompareNoCase(L"abc"),
                  WbString().CompareNoCase(nullptr), a.Compare(L"B"), a.CompareNoCase(L"B")}),
            (Ints{0, -1, 1, 0, 1, -1}));
  EXPECT_EQ((Ints{path.Find(L"mm"), path.Find(L"mm", 1), path.Find(L'/', 3), path.Find(L"kg"), path.Find(L"mm", 7),
                  path.Find(L'm', 100)}),
            (Ints{0, 6, 5, -1, -1, -1}));
}

}  // namespace
