#include "wbcore/WbError.h"

#include <atomic>
#include <cwchar>
#include <exception>

#include "WbFormat.h"

#include "wbcore/WbLocalize.h"
#include "wbcore/WbLogger.h"

namespace {
// One record per thread: a caller reads its error before making the next failing call. Both
// are constant-initialised and trivially destructible: a thread's first error neither runs a
// constructor nor registers a destructor (which needs memory the C library may not find).
thread_local WbErrObj t_lastError;
thread_local bool t_hasError = false;

// The text recorded when even the message could not be formatted for lack of memory.
constexpr const wchar_t* kOutOfMemory = L"Not enough memory";

// The message formatted in full on the heap: only for a message longer than the record.
void SetLongMessage(const wchar_t* format, va_list args) noexcept {
  try {
    t_lastError.SetMessage(WbFormatV(format, args).c_str());
  } catch (const std::exception&) {
    t_lastError.SetMessage(kOutOfMemory);
  }
}

std::atomic<WbLocalizeHook>& LocalizeHook() {
  static std::atomic<WbLocalizeHook> hook{nullptr};
  return hook;
}
std::atomic<WbLogger::Sink>& LoggerSink() {
  static std::atomic<WbLogger::Sink> sink{nullptr};
  return sink;
}
}  // namespace

void WbErrObj::SetMessage(const wchar_t* message) noexcept {
  if (!message) message = L"";
  std::size_t length = 0;
  while (length + 1 < kCapacity && message[length]) {
    m_text[length] = message[length];
    ++length;
  }
  if (message[length]) {
    for (std::size_t i = kCapacity - 4; i < kCapacity - 1; ++i) m_text[i] = L'.';
    length = kCapacity - 1;
  }
  m_text[length] = L'\0';
}

const WbErrObj* wbcore_detail::SetErrorVarArgs(const wchar_t* format, ...) noexcept {
  // Formatted aside first: the previous message may be one of the arguments.
  wchar_t text[WbErrObj::kCapacity];
  va_list args;
  va_start(args, format);
  if (FormatInto(text, WbErrObj::kCapacity, format, args)) {
    t_lastError.SetMessage(text);
  } else {
    SetLongMessage(format, args);
  }
  va_end(args);
  t_hasError = true;
  return &t_lastError;
}

const WbErrObj* WbGetLastError() { return t_hasError ? &t_lastError : nullptr; }

WbLocalizeHook WbSetLocalizeHook(WbLocalizeHook hook) { return LocalizeHook().exchange(hook); }

const wchar_t* WbLocalizeStringExW(const wchar_t* message, int context) {
  const WbLocalizeHook hook = LocalizeHook().load();
  if (hook && message) {
    if (const wchar_t* translated = hook(message, context)) return translated;
  }
  return message;
}

WbString wbcore_detail::LocalizeStringVarArgsW(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  WbString result(WbFormatV(WbLocalizeStringExW(format, 0), args));
  va_end(args);
  return result;
}

WbLogger::Sink WbLogger::SetSink(Sink sink) { return LoggerSink().exchange(sink); }

void WbLogger::LogVarArgs(int level, const wchar_t* format, ...) {
  const Sink sink = LoggerSink().load();
  if (!sink) return;
  std::wstring message;
  va_list args;
  va_start(args, format);
  try {
    message = WbFormatV(format, args);
  } catch (const std::exception&) {
    va_end(args);
    return;  // a message that cannot be formatted for lack of memory is dropped
  }
  va_end(args);
  sink(level, message.c_str());
}
