#pragma once

// Hot loops marked ZM_AVX2_CLONES are also built for AVX2 and chosen when the library is
// loaded, on processors that have it (GCC and Clang on x86-64 ELF; elsewhere the mark does
// nothing). The clones run the same operations in the same order on wider vectors, and
// contraction into fused multiply-adds is off, so they round exactly as the default build.
// Helpers that such a function calls must be inline so that they are built for AVX2 too.
#if defined(__x86_64__) && defined(__ELF__) && (defined(__GNUC__) || defined(__clang__))
#define ZM_AVX2_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define ZM_AVX2_CLONES
#endif
