#pragma once

// The suites that run once per kernel version (see tests/CMakeLists.txt) start by checking that
// the version named in ZEMCALC_KERNEL_VERSION is the one running, so that each run tests what it
// says. A version beyond this processor prints the line that ctest reads as "skipped".
#include <gtest/gtest.h>
#include <zemcalc/ZmKernelVersion.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace kernel_version_check {

const char* const kVersions[] = {"default", "avx2", "avx512"};

// The rank of a version name in kVersions, -1 for any other text.
inline int Rank(const std::string& name) {
  for (int v = 0; v < 3; ++v)
    if (name == kVersions[v]) return v;
  return -1;
}

// The widest version this processor runs, asked of the processor here, not of the library.
inline int WidestOfThisProcessor() {
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return 2;
  if (__builtin_cpu_supports("avx2")) return 1;
#endif
  return 0;
}

TEST(KernelVersion, TheVersionNamedInTheEnvironmentRuns) {
  const char* forced = std::getenv("ZEMCALC_KERNEL_VERSION");
  const int wanted = forced ? Rank(forced) : -1;
  const int widest = WidestOfThisProcessor();
  if (wanted > widest) {
    std::printf("kernel version %s is beyond this processor\n", forced);
    GTEST_SKIP();
  }
  EXPECT_STREQ(ZmKernelVersion(), kVersions[wanted >= 0 ? wanted : widest])
      << "ZEMCALC_KERNEL_VERSION=" << (forced ? forced : "(unset)");
}

}  // namespace kernel_version_check
