// WbString: the wide-format convention of the formatter, FormatFloat, trimming, splitting and
// the comparison and search helpers.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

using Texts = std::pair<WbString, WbString>;
using Ints = std::vector<std::int64_t>;

// In a format, %s takes a wide string, with width, precision and flags; an explicit "%ls" keeps
// its wide meaning, "%hs" and "%hc" are the narrow forms. Characters outside ASCII pass through
// unchanged (translations are not ASCII), and length modifiers of numbers survive the rewriting.
TEST(WbStringFormat, PercentSTakesAWideStringAndOutputHasNoLengthLimit) {
  WbString text;
  text.Format(L"Unsupported length unit '%s'. Possible values are : %s", WbString(L"mm"), L"m, mm");
  const std::wstring block(5000, L'x');
  const Texts rows[] = {{text, L"Unsupported length unit 'mm'. Possible values are : m, mm"},
                        {WbString::Formatted(L"[%-8s]", L"abc"), L"[abc     ]"},
                        {WbString::Formatted(L"[%8s]", L"abc"), L"[     abc]"},
                        {WbString::Formatted(L"[%.3s]", L"abcdef"), L"[abc]"},
                        {WbString::Formatted(L"[%-6.2s]", L"abcdef"), L"[ab    ]"},
                        {WbString::Formatted(L"[%*s]", 5, L"ab"), L"[   ab]"},
                        {WbString::Formatted(L"%s|%c", L"\u00e9t\u00e9", L'\u00b0'), L"\u00e9t\u00e9|\u00b0"},
                        {WbString::Formatted(L"%ls+%hs+%hc", L"wide", "narrow", 'n'), L"wide+narrow+n"},
                        {WbString::Formatted(L"%c%c", L'o', L'k'), L"ok"},
                        {WbString::Formatted(L"100%% of %d%%", 5), L"100% of 5%"},
                        {WbString::Formatted(L"%llu %ld %5.2f %g", 18446744073709551615ull, -7L, 3.14159, 0.5),
                         L"18446744073709551615 -7  3.14 0.5"},
                        {WbString::Formatted(nullptr), L""},
                        // Longer than the first buffer, by the text or by the width alone.
                        {WbString::Formatted(L"<%s>", block.c_str()), WbString(L"<" + block + L">")},
                        {WbString::Formatted(L"%1000d", 42), WbString(std::wstring(998, L' ') + L"42")}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
}

TEST(WbStringFormat, WorkIsBoundedAndARefusedFormatComesBackAsItsText) {
  // Each of these once ran for seconds to minutes in vswprintf and returned an empty string.
  // Widths and number precisions above 65536, from digits or '*', are refused at once.
  const Texts rows[] = {{WbString::Formatted(L"%999999999d", 1), L"%999999999d"},
                        {WbString::Formatted(L"[%.999999999f]", 1.0), L"[%.999999999f]"},
                        {WbString::Formatted(L"%*d", 2000000000, 1), L"%*d"},
                        {WbString::Formatted(L"%65537x", 1u), L"%65537x"},
                        {WbString::Formatted(L"%1$*2$d", 5, 3), L"%1$*2$d"},  // '*' with positional arguments
                        {WbString::Formatted(L"%m"), L"%m"},                  // no argument walk for it
                        {WbString::Formatted(L"%hs", "\xff\xfe"), L"%hs"},    // not text in the C locale
                        // Accepted: the limits themselves, a negative '*' width (left-justified) and precision
                        // (omitted), a long string precision that only cuts the string, positional arguments.
                        {WbString::Formatted(L"%*d|%.*f", -3, 7, -1, 0.5), L"7  |0.500000"},
                        {WbString::Formatted(L"%.999999999s", L"abc"), L"abc"},
                        {WbString::Formatted(L"%2$s %1$d", 5, L"ab"), L"ab 5"}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
  // %.65536f of 1e308: its 309 integer digits, the point and 65536 decimals. The largest long
  // double has 4933 integer digits; %Lf adds the point and 6 decimals.
  EXPECT_EQ((Ints{std::int64_t(WbString::Formatted(L"%65536d", 1).GetLength()),
                  std::int64_t(WbString::Formatted(L"%.65536f", 1e308).GetLength()),
                  std::int64_t(WbString::Formatted(L"%Lf", 1.18973149535723176502e+4932L).GetLength())}),
            (Ints{65536, 309 + 1 + 65536, 4933 + 7}));
}

TEST(WbStringFormat, FormatFloatUsesSixteenSignificantDigitsAtMost) {
  // Python: '%.16g' % 0.1 -> '0.1'; '%.16g' % 1e32 -> '1e+32';
  // '%.16g' % -1.0000000331813535e32 -> '-1.000000033181354e+32' (the widened invalid marker).
  const std::pair<double, const wchar_t*> rows[] = {{0.1, L"0.1"},
                                                    {1e32, L"1e+32"},
                                                    {-1.0000000331813535e32, L"-1.000000033181354e+32"},
                                                    {1.0 / 3.0, L"0.3333333333333333"},
                                                    {200000.0, L"200000"}};
  for (const auto& r : rows) {
    WbString text;
    text.FormatFloat(r.first, 16);
    EXPECT_EQ(text, r.second);
  }
}

// Trimming removes the given characters from the ends (inner blanks stay); Mid and Left clamp
// at the end.
TEST(WbStringEdit, TrimMidLeftAndUpper) {
  const WbString blanks(L" \t value  x \r\n"), path(L"mm/ms/mm");
  const Texts rows[] = {{WbString(blanks).TrimLeft(), L"value  x \r\n"},
                        {WbString(blanks).TrimRight(), L" \t value  x"},
                        {WbString(blanks).Trim(), L"value  x"},
                        {WbString(L"--a-b--").Trim(L"-"), L"a-b"},
                        {WbString(L" \t\r\n ").Trim(), L""},
                        {WbString(L"").Trim(), L""},
                        {WbString(L"abc").Trim(L""), L"abc"},
                        {path.Mid(3), L"ms/mm"},
                        {path.Mid(3, 2), L"ms"},
                        {path.Mid(6, 100), L"mm"},
                        {path.Mid(8), L""},
                        {path.Mid(50, 2), L""},
                        {path.Left(0), L""},
                        {path.Left(2), L"mm"},
                        {path.Left(99), path},
                        {WbString(L"Kg").MakeUpper(), L"KG"}};
  for (const Texts& r : rows) EXPECT_EQ(r.first, r.second);
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
              {L"a  b\tc", L" \t", 0, 3, L"<a><b><c>"},
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
  EXPECT_EQ((Ints{WbString(L"Hello").CompareNoCase(L"hELLO"), WbString(L"abc").CompareNoCase(L"ABD"),
                  WbString(L"ABCD").CompareNoCase(L"abc"), WbString(L"").CompareNoCase(nullptr),
                  WbString(L"a").Compare(L"B"), WbString(L"a").CompareNoCase(L"B")}),
            (Ints{0, -1, 1, 0, 1, -1}));
  const WbString path(L"mm/ms/mm");
  EXPECT_EQ((Ints{path.Find(L"mm"), path.Find(L"mm", 1), path.Find(L'/', 3), path.Find(L"kg"), path.Find(L"mm", 7),
                  path.Find(L'm', 100)}),
            (Ints{0, 6, 5, -1, -1, -1}));
}

}  // namespace
