#pragma once

// Each source unit carries a small record that says what it was built from; nothing in the
// library reads it, it is there for whoever inspects the binary. The values come from the
// build (see the top-level CMakeLists.txt) and fall back to "unknown".
#ifndef ZEMCALC_REVISION
#define ZEMCALC_REVISION "unknown"
#endif
#ifndef ZEMCALC_BRANCH
#define ZEMCALC_BRANCH "unknown"
#endif
#ifndef ZEMCALC_BUILD_HOST
#define ZEMCALC_BUILD_HOST "unknown"
#endif

namespace zm {
struct BuildInfo {
  const char* module;
  const char* baseLibrary;
  const char* revision;
  const char* branch;
  const char* buildHost;
  const char* notice;
};
}  // namespace zm

#define ZM_BUILD_INFO(unit)                                                                     \
  namespace {                                                                                   \
  [[maybe_unused]] volatile const zm::BuildInfo kBuildInfo_##unit = {                           \
      "zemcalc", "WbCore", ZEMCALC_REVISION, ZEMCALC_BRANCH, ZEMCALC_BUILD_HOST,                \
      "zemcalc " #unit ": mathematics and geometry for engineering simulation"};                \
  }
