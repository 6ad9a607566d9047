// Error records, the localisation hook and the logger.
#include <gtest/gtest.h>
#include <wbcore/WbError.h>
#include <wbcore/WbLocalize.h>
#include <wbcore/WbLogger.h>
#include <wbcore/WbString.h>

#include <cwchar>
#include <string>
#include <thread>

#include "wbcore/wb_print.h"

namespace {

TEST(WbError, MessageIsTheFormattedText) {
  const WbString unit(L"px");
  const WbErrObj* error =
      WbSetError(WbLocalizeStringExW(L"Unsupported length unit '%s'. Possible values are : %s", 0), unit, L"mm, m");
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(WbString(error->GetMessage()), L"Unsupported length unit 'px'. Possible values are : mm, m");
  EXPECT_EQ(WbGetLastError(), error);

  error = WbSetError(L"%d points for degree %d (%g)", 2, 3, 0.25);
  EXPECT_EQ(WbString(error->GetMessage()), L"2 points for degree 3 (0.25)");
  // The previous message may be an argument of the next one.
  error = WbSetError(L"Filtering failed: %s", error->GetMessage());
  EXPECT_EQ(WbString(error->GetMessage()), L"Filtering failed: 2 points for degree 3 (0.25)");
  // The record keeps 1023 characters: a longer message is cut to 1020 and "...".
  error = WbSetError(L"%s!", std::wstring(2000, L'u').c_str());
  EXPECT_EQ(std::wstring(error->GetMessage()), std::wstring(1020, L'u') + L"...");
}

TEST(WbError, EachThreadKeepsItsOwnRecord) {
  const WbErrObj* mine = WbSetError(L"Not enough points to filter");
  const WbErrObj* theirs = nullptr;
  const WbErrObj* theirsBefore = mine;
  std::wstring theirText;
  std::thread other([&] {
    theirsBefore = WbGetLastError();
    theirs = WbSetError(L"Inconsistent target unit system");
    theirText = theirs->GetMessage();
  });
  other.join();
  EXPECT_EQ(theirsBefore, nullptr);  // a fresh thread has recorded nothing
  EXPECT_EQ(theirText, L"Inconsistent target unit system");
  EXPECT_NE(theirs, mine);
  // The other thread's error did not touch this thread's record.
  EXPECT_EQ(WbGetLastError(), mine);
  EXPECT_EQ(WbString(mine->GetMessage()), L"Not enough points to filter");
}

// The host's translations for the hook below.
const wchar_t* FrenchHook(const wchar_t* message, int context) {
  if (context != 0) return nullptr;
  if (std::wcscmp(message, L"Not enough points to filter") == 0) return L"Pas assez de points pour filtrer";
  if (std::wcscmp(message, L"Origin: %s / Normal: %s") == 0) return L"Origine : %s / Normale : %s";
  return nullptr;  // untranslated
}

// Puts the previous hook back even when an assertion fails.
class HookGuard {
 public:
  explicit HookGuard(WbLocalizeHook hook) : m_previous(WbSetLocalizeHook(hook)) {}
  ~HookGuard() { WbSetLocalizeHook(m_previous); }
  HookGuard(const HookGuard&) = delete;
  HookGuard& operator=(const HookGuard&) = delete;

 private:
  WbLocalizeHook m_previous;
};

TEST(WbLocalize, IdentityByDefaultAndTheHostHookWhenInstalled) {
  const wchar_t* message = L"Not enough points to filter";
  EXPECT_EQ(WbLocalizeStringExW(message, 0), message);  // the same text, not a copy
  EXPECT_EQ(WbLocalizeStringVW(L"Origin: %s / Normal: %s", L"1,2,3", L"0.000,0.000,1.000"),
            L"Origin: 1,2,3 / Normal: 0.000,0.000,1.000");
  {
    HookGuard guard(&FrenchHook);
    EXPECT_EQ(WbString(WbLocalizeStringExW(message, 0)), L"Pas assez de points pour filtrer");
    EXPECT_EQ(WbLocalizeStringExW(message, 7), message);  // the hook declines: untranslated
    const wchar_t* unknown = L"Inconsistent source unit system";
    EXPECT_EQ(WbLocalizeStringExW(unknown, 0), unknown);
    EXPECT_EQ(WbLocalizeStringVW(L"Origin: %s / Normal: %s", L"1,2,3", L"0.000,0.000,1.000"),
              L"Origine : 1,2,3 / Normale : 0.000,0.000,1.000");
    const WbErrObj* error = WbSetError(WbLocalizeStringExW(message, 0));
    EXPECT_EQ(WbString(error->GetMessage()), L"Pas assez de points pour filtrer");
    // Installing returns the hook that was in place.
    EXPECT_EQ(WbSetLocalizeHook(&FrenchHook), &FrenchHook);
  }
  // Restored: the identity again.
  EXPECT_EQ(WbSetLocalizeHook(nullptr), nullptr);
  EXPECT_EQ(WbLocalizeStringExW(message, 0), message);
}

std::wstring g_logged;
int g_loggedLevel = -1;
void RecordingSink(int level, const wchar_t* message) {
  g_loggedLevel = level;
  g_logged = message;
}

TEST(WbLogger, SinkReceivesFormattedMessagesAndNoSinkDiscards) {
  WbLogger::Log(WbLogger::LEVEL_INFO, L"dropped %s", L"text");  // no sink: nothing happens
  EXPECT_EQ(WbLogger::SetSink(&RecordingSink), nullptr);
  WbLogger::Log(WbLogger::LEVEL_WARNING, L"%s has %d points", L"curve", 3);
  EXPECT_EQ(g_loggedLevel, WbLogger::LEVEL_WARNING);
  EXPECT_EQ(g_logged, L"curve has 3 points");
  EXPECT_EQ(WbLogger::SetSink(nullptr), &RecordingSink);
  WbLogger::Log(WbLogger::LEVEL_ERROR, L"after");
  EXPECT_EQ(g_logged, L"curve has 3 points");
}

}  // namespace
