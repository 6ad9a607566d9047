#pragma once

// Eigenvalues and eigenvectors of a real symmetric 3x3 matrix by cyclic Jacobi rotations:
// each rotation zeroes one off-diagonal pair, and the sweeps converge quadratically, so a few
// sweeps reach the rounding level. The eigenvectors come out orthonormal (products of plane
// rotations) whatever the spread of the eigenvalues, which the closed-form cubic does not
// give for close or equal ones. No allocation.
#include <cmath>

namespace zm {
namespace eigen {

// The diagonal entry that the off-diagonal a[p][q] cannot change any more is left alone.
template <class T>
bool IsNegligible(T offDiagonal, T diagonal) {
  const T scaled = T(100) * std::fabs(offDiagonal);
  return std::fabs(diagonal) + scaled == std::fabs(diagonal);
}

// values[k] and column k of vectors (vectors[row][k]) are the k-th eigenpair of the
// symmetric matrix a (only its upper triangle is read), in no particular order. A matrix with
// a NaN or an infinity gives NaN entries: the caller checks.
template <class T>
void SymmetricEigen3(const T (&a)[3][3], T (&values)[3], T (&vectors)[3][3]) {
  T m[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      m[i][j] = i <= j ? a[i][j] : a[j][i];
      vectors[i][j] = i == j ? T(1) : T(0);
    }
  }
  constexpr int kMaxSweeps = 32;
  constexpr int kPairs[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  for (int sweep = 0; sweep < kMaxSweeps; ++sweep) {
    if (m[0][1] == 0 && m[0][2] == 0 && m[1][2] == 0) break;
    for (const auto& pair : kPairs) {
      const int p = pair[0], q = pair[1];
      const T apq = m[p][q];
      if (apq == 0) continue;
      if (IsNegligible(apq, m[p][p]) && IsNegligible(apq, m[q][q])) {
        m[p][q] = m[q][p] = 0;
        continue;
      }
      // The rotation J in the (p, q) plane with tan(angle) = t that zeroes m[p][q]:
      // t^2 + 2 t theta - 1 = 0, the root of smaller magnitude.
      const T theta = (m[q][q] - m[p][p]) / (T(2) * apq);
      const T t = (theta < 0 ? T(-1) : T(1)) / (std::fabs(theta) + std::sqrt(theta * theta + T(1)));
      const T c = T(1) / std::sqrt(t * t + T(1)), s = t * c;
      for (int k = 0; k < 3; ++k) {  // m J
        const T mkp = m[k][p], mkq = m[k][q];
        m[k][p] = c * mkp - s * mkq;
        m[k][q] = s * mkp + c * mkq;
      }
      for (int k = 0; k < 3; ++k) {  // J^T (m J)
        const T mpk = m[p][k], mqk = m[q][k];
        m[p][k] = c * mpk - s * mqk;
        m[q][k] = s * mpk + c * mqk;
      }
      m[p][q] = m[q][p] = 0;
      for (int k = 0; k < 3; ++k) {  // vectors J
        const T vkp = vectors[k][p], vkq = vectors[k][q];
        vectors[k][p] = c * vkp - s * vkq;
        vectors[k][q] = s * vkp + c * vkq;
      }
    }
  }
  for (int k = 0; k < 3; ++k) values[k] = m[k][k];
}

}  // namespace eigen
}  // namespace zm
