// Error records, the localisation hook and the logger.
#include <gtest/gtest.h>
#include <wbcore/WbError.h>
#include <wbcore/WbLocalize.h>
#include <wbcore/WbLogger.h>

#include <cwchar>
#include <thread>

#include "wbcore/wb_test_support.h"

namespace {

TEST(WbError, MessageIsTheFormattedTextCutToTheRecord) {
  const WbString unit(L"px");
  const WbErrObj* error =
      WbSetError(WbLocalizeStringExW(L"Unsupported length unit '%s'. Possible values are : %s", 0), unit, L"mm, m");
  EXPECT_EQ(WbGetLastError(), error);
  EXPECT_EQ(WbString(error->GetMessage()), L"Unsupported length unit 'px'. Possible values are : mm, m");
  // The previous message may be an argument of the next one.
  error = WbSetError(L"%d points for degree %d (%g)", 2, 3, 0.25);
  error = WbSetError(L"Filtering failed: %s", error->GetMessage());
  EXPECT_EQ(WbString(error->GetMessage()), L"Filtering failed: 2 points for degree 3 (0.25)");
  // The record keeps 1023 characters: a longer message is cut to 1020 and "...".
  const std::wstring cut = std::wstring(1020, L'u') + L"...";
  const std::pair<std::size_t, std::wstring> rows[] = {{1023, std::wstring(1023, L'u')}, {1024, cut}, {2000, cut}};
  for (const auto& r : rows) {
    EXPECT_EQ(std::wstring(WbSetError(L"%s", std::wstring(r.first, L'u').c_str())->GetMessage()), r.second) << r.first;
  }
}

TEST(WbError, EachThreadKeepsItsOwnRecord) {
  const WbErrObj *mine = WbSetError(L"Not enough points to filter"), *theirsBefore = mine;
  std::wstring theirs;
  std::thread([&] {
    theirsBefore = WbGetLastError();  // a fresh thread has recorded nothing
    theirs = WbSetError(L"Inconsistent target unit system")->GetMessage();
  }).join();
  EXPECT_TRUE(theirsBefore == nullptr && theirs == L"Inconsistent target unit system");
  // The other thread's error did not touch this thread's record.
  EXPECT_EQ(WbGetLastError(), mine);
  EXPECT_EQ(WbString(mine->GetMessage()), L"Not enough points to filter");
}

// The host's translations, for context 0 only.
const wchar_t* FrenchHook(const wchar_t* message, int context) {
  if (context != 0) return nullptr;
  if (std::wcscmp(message, L"Not enough points to filter") == 0) return L"Pas assez de points pour filtrer";
  if (std::wcscmp(message, L"Origin: %s / Normal: %s") == 0) return L"Origine : %s / Normale : %s";
  return nullptr;  // untranslated
}

// Without a hook the text itself comes back (not a copy); with one, its translation where it
// gives one. Installing returns the hook that was in place.
TEST(WbLocalize, IdentityByDefaultAndTheHostHookWhenInstalled) {
  const wchar_t* message = L"Not enough points to filter";
  const wchar_t* unknown = L"Inconsistent source unit system";
  EXPECT_EQ(WbLocalizeStringExW(message, 0), message);
  EXPECT_EQ(WbLocalizeStringVW(L"Origin: %s / Normal: %s", L"1,2,3", L"0,0,1"), L"Origin: 1,2,3 / Normal: 0,0,1");
  EXPECT_EQ(WbSetLocalizeHook(&FrenchHook), nullptr);
  EXPECT_EQ(WbString(WbLocalizeStringExW(message, 0)), L"Pas assez de points pour filtrer");
  EXPECT_TRUE(WbLocalizeStringExW(message, 7) == message && WbLocalizeStringExW(unknown, 0) == unknown);
  EXPECT_EQ(WbLocalizeStringVW(L"Origin: %s / Normal: %s", L"1,2,3", L"0,0,1"), L"Origine : 1,2,3 / Normale : 0,0,1");
  EXPECT_EQ(WbString(WbSetError(WbLocalizeStringExW(message, 0))->GetMessage()), L"Pas assez de points pour filtrer");
  EXPECT_EQ(WbSetLocalizeHook(nullptr), &FrenchHook);
  EXPECT_EQ(WbLocalizeStringExW(message, 0), message);
}

std::wstring g_logged;
void RecordingSink(int level, const wchar_t* message) { g_logged = std::to_wstring(level) + L":" + message; }

TEST(WbLogger, SinkReceivesFormattedMessagesAndNoSinkDiscards) {
  WbLogger::Log(WbLogger::LEVEL_INFO, L"dropped %s", L"text");
  EXPECT_EQ(WbLogger::SetSink(&RecordingSink), nullptr);
  WbLogger::Log(WbLogger::LEVEL_WARNING, L"%s has %d points", L"curve", 3);
  EXPECT_EQ(WbLogger::SetSink(nullptr), &RecordingSink);
  WbLogger::Log(WbLogger::LEVEL_ERROR, L"after");
  EXPECT_EQ(g_logged, std::to_wstring(WbLogger::LEVEL_WARNING) + L":curve has 3 points");
}

}  // namespace
