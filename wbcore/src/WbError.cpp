#include "wbcore/WbError.h"
#include <atomic>

#include "wbcore/WbLocalize.h"
#include "wbcore/WbLogger.h"

namespace {
// One record per thread: a caller reads its error before making the next failing call.
thread_local WbErrObj t_lastError;
thread_local bool t_hasError = false;

std::atomic<WbLocalizeHook>& LocalizeHook() {
  static std::atomic<WbLocalizeHook> hook{nullptr};
  return hook;
}
std::atomic<WbLogger::Sink>& LoggerSink() {
  static std::atomic<WbLogger::Sink> sink{nullptr};
  return sink;
}
}  // namespace

const WbErrObj* wbcore_detail::SetErrorVarArgs(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  t_lastError = WbErrObj(WbString(WbFormatV(format, args)));
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
  va_list args;
  va_start(args, format);
  const std::wstring message = WbFormatV(format, args);
  va_end(args);
  sink(level, message.c_str());
}
