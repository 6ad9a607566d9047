// The base library's formatter: a format of literal text (any characters, '%' doubled) around
// one conversion with fuzzed flags, width, precision and length, given an argument of the type
// the conversion takes. Also the shortest float text, which must read back as the value, and
// the string helpers.
#include <wbcore/WbString.h>

#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "fuzz_input.h"

namespace {

// Literal text: every '%' doubled, no terminator inside.
std::wstring Literal(FuzzedDataProvider& in) {
  const WbString text = fuzz::Text(in, 32);
  std::wstring out;
  for (const wchar_t* p = text.GetString(); *p; ++p) {
    out += *p;
    if (*p == L'%') out += L'%';
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  std::wstring format = Literal(in) + L"%";
  const wchar_t flags[] = L"-+ #0";
  for (int i = in.ConsumeIntegralInRange<int>(0, 3); i > 0; --i) format += flags[in.ConsumeIntegralInRange<int>(0, 4)];
  if (in.ConsumeBool()) format += std::to_wstring(in.ConsumeIntegralInRange<int>(0, 300));
  if (in.ConsumeBool()) format += L"." + std::to_wstring(in.ConsumeIntegralInRange<int>(0, 300));
  const WbString word = fuzz::Text(in, 64);
  const std::string narrow = in.ConsumeRandomLengthString(32);
  const double number = fuzz::Number<double>(in);
  const int whole = in.ConsumeIntegral<int>();
  const long long wholeLong = in.ConsumeIntegral<long long>();
  WbString out;
  switch (in.ConsumeIntegralInRange<int>(0, 7)) {
    case 0: out.Format((format + L"d" + Literal(in)).c_str(), whole); break;
    case 1: out.Format((format + L"llx" + Literal(in)).c_str(), wholeLong); break;
    case 2: out.Format((format + L"g" + Literal(in)).c_str(), number); break;
    case 3: out.Format((format + L"e" + Literal(in)).c_str(), number); break;
    case 4: out.Format((format + L"f" + Literal(in)).c_str(), number); break;
    case 5: out.Format((format + L"s" + Literal(in)).c_str(), word); break;
    case 6: out.Format((format + L"hs" + Literal(in)).c_str(), narrow.c_str()); break;
    default: out.Format((format + L"c" + Literal(in)).c_str(), static_cast<wchar_t>(whole & 0xFFFF)); break;
  }
  // "%s" takes a wide string whole.
  WbString plain;
  plain.Format(L"%s", word);
  if (!(plain == word.GetString())) std::abort();
  // 17 significant digits read back as the value itself.
  WbString shortest;
  shortest.FormatFloat(number, 17);
  if (std::isfinite(number) && std::wcstod(shortest.GetString(), nullptr) != number) std::abort();

  WbObjectArrayTempl<WbString> words;
  word.SplitWords(words, L" ;", in.ConsumeBool());
  WbString trimmed = word;
  trimmed.Trim().MakeUpper();
  (void)word.Find(L"e", in.ConsumeIntegral<std::uint8_t>());
  (void)word.Mid(in.ConsumeIntegral<std::uint8_t>(), in.ConsumeIntegral<std::uint8_t>());
  return 0;
}
