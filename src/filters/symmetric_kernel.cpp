#include "filters/symmetric_kernel.h"

#include "foundation/build_info.h"
#include "foundation/kernel_version.h"

ZM_BUILD_INFO(symmetric_kernel)

namespace zm {
namespace filter {
namespace {

// Bytes / sizeof(T) values in one register of the instruction set that a version targets.
// Readable at any address of a T.
template <class T, int Bytes>
struct Vector {
  typedef T type __attribute__((vector_size(Bytes), aligned(sizeof(T)), may_alias));
};

// One output in the order of the kernel sum; the plain loop that the vector lanes reproduce.
template <class T>
inline __attribute__((always_inline)) T OneOutput(const T* w, const T* c, int n, int h) {
  T sum = 0;
  for (int k = 0; k < h; ++k) sum += (w[k] + w[n - 1 - k]) * c[k];
  if (n & 1) sum += w[h] * c[h];
  return sum;
}

// Each lane of a vector is a different output j, and each lane performs exactly the scalar
// operations of OneOutput, in the same order: the same bits as the plain loop. Four vectors per
// step keep independent additions in flight. Every block reads b[j .. j + block + n - 2] before
// it writes b[j .. j + block - 1], which no later output reads.
template <class T, int Bytes>
inline __attribute__((always_inline)) void FilterInPlace(T* b, std::uint64_t count, const T* c, int n) {
  typedef typename Vector<T, Bytes>::type V;
  constexpr int kLanes = Bytes / static_cast<int>(sizeof(T));
  constexpr int kVectors = 4;
  constexpr std::uint64_t kBlock = kVectors * kLanes;
  const int h = n / 2;
  std::uint64_t j = 0;
  for (; j + kBlock <= count; j += kBlock) {
    T* w = b + j;
    V sum[kVectors] = {};
    for (int k = 0; k < h; ++k) {
      const V weight = c[k] - V{};  // a broadcast: x - (+0) is x, -0 and NaN included
      for (int v = 0; v < kVectors; ++v) {
        const V left = *reinterpret_cast<const V*>(w + k + v * kLanes);
        const V right = *reinterpret_cast<const V*>(w + (n - 1 - k) + v * kLanes);
        sum[v] += (left + right) * weight;
      }
    }
    if (n & 1) {
      const V weight = c[h] - V{};
      for (int v = 0; v < kVectors; ++v) sum[v] += *reinterpret_cast<const V*>(w + h + v * kLanes) * weight;
    }
    for (int v = 0; v < kVectors; ++v) *reinterpret_cast<V*>(w + v * kLanes) = sum[v];
  }
  for (; j < count; ++j) b[j] = OneOutput(b + j, c, n, h);
}

// One version per instruction set, each on its own register width. The version is chosen in
// one place for the whole library (foundation/kernel_version.h); every version runs the same
// operations in the same order, so every processor gets the same bits.
template <class T>
void RunDefault(T* b, std::uint64_t count, const T* c, int n) {
  FilterInPlace<T, 16>(b, count, c, n);
}

#if ZM_HAS_KERNEL_VERSIONS
template <class T>
ZM_TARGET_AVX2 void RunAvx2(T* b, std::uint64_t count, const T* c, int n) {
  FilterInPlace<T, 32>(b, count, c, n);
}

template <class T>
ZM_TARGET_AVX512 void RunAvx512(T* b, std::uint64_t count, const T* c, int n) {
  FilterInPlace<T, 64>(b, count, c, n);
}
#endif

template <class T>
void RunKernel(T* b, std::uint64_t count, const T* c, int n) {
#if ZM_HAS_KERNEL_VERSIONS
  switch (ChosenKernelVersion()) {
    case KernelVersion::kAvx512: return RunAvx512(b, count, c, n);
    case KernelVersion::kAvx2: return RunAvx2(b, count, c, n);
    case KernelVersion::kDefault: break;
  }
#endif
  RunDefault(b, count, c, n);
}

}  // namespace

void ApplySymmetricKernel(double* b, std::uint64_t count, const double* c, int n) { RunKernel(b, count, c, n); }
void ApplySymmetricKernel(float* b, std::uint64_t count, const float* c, int n) { RunKernel(b, count, c, n); }

}  // namespace filter
}  // namespace zm
