#include <wbcore/WbLocalize.h>

#include <cmath>
#include <exception>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmMathMaterial.h"

ZM_BUILD_INFO(material_laws)

namespace {

constexpr float kHollomonLowerStrain = 0.1f;
constexpr float kSamplerStep = 0.05f;
constexpr int kSamplerPoints = 21;
constexpr float kOnePlusEpsilon = 1.0000001192092896f;  // 1 + FLT_EPSILON
constexpr float kFloatEpsilon = 1.1920928955078125e-7f;
constexpr float kKeelerThicknessSlope = 14.6f;
constexpr float kKeelerReferenceN = 0.21f;
constexpr int kKeelerPoints = 180;
constexpr int kKeelerLeftPoints = 80;
constexpr float kPercent = 0.01f;
constexpr float kStretchOffset = 1.0e-7f;

// A strain raised to a power for a coefficient: double pow, rounded to float, in both twins.
template <class T>
T PowerRoundedToFloat(T base, T exponent) {
  return static_cast<T>(static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent))));
}

// A plain power: double pow, rounded once to the class's precision.
template <class T>
T Power(T base, T exponent) {
  return static_cast<T>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}

template <class T>
T CapAt(T value, T maxStress) {
  return (maxStress > 0 && value > maxStress) ? maxStress : value;
}

// The strains of the fixed samplers.
template <class T>
T SamplerStrain(int i) {
  return static_cast<T>(i) * static_cast<T>(kSamplerStep);
}

const WbErrObj* FailFit(const wchar_t* message) { return WbSetError(WbLocalizeStringExW(message, 0)); }

}  // namespace

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeHollomonCoeff(const Point2* pts, int count, T& K, T& n) {
  if (count < 3 || !pts) return 0;
  T lower = T(kHollomonLowerStrain);
  if (pts[count - 2].x <= lower) lower = pts[count - 2].x;
  const T upper = pts[count - 1].x;

  // The sums are accumulated while the candidates are found: no temporary lists.
  int accepted = 0, anchor = -1;
  bool distinctX = false;
  T firstLogX = 0, sx = 0, sxx = 0, sy = 0, sxy = 0;
  for (int i = 2; i < count; ++i) {
    const T x = pts[i].x;
    if (!(lower <= x && x <= upper)) continue;
    const T logX = std::log(x), logY = std::log(pts[i].y);
    if (accepted == 0) {
      firstLogX = logX;
    } else if (logX != firstLogX) {
      distinctX = true;
    }
    if (anchor < 0 || x > pts[anchor].x) anchor = i;
    sx += logX;
    sxx += logX * logX;
    sy += logY;
    sxy += logX * logY;
    ++accepted;
  }
  if (accepted < 3 || !distinctX) return 0;

  const T m = static_cast<T>(accepted);
  const T d = m * sxx - sx * sx;
  n = (m * sxy - sx * sy) / d;
  K = (sxx * sy - sx * sxy) / d;  // the regression's intercept, replaced by the anchored K
  K = pts[anchor].y / PowerRoundedToFloat(pts[anchor].x, n);
  return 1;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeKrupkowskyCoeff(const Point2* pts, int count, T& K, T& n, T& eps0,
                                                         T& lastStress) {
  if (!ComputeHollomonCoeff(pts, count, K, n)) return 0;
  lastStress = pts[count - 1].y;
  if (n == T(0)) return 0;
  eps0 = Power(pts[0].y / K, T(1) / n) - pts[0].x;
  return 1;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeHollomonCurvePoints(Curve& curve, T K, T n, T yieldStress, T maxStress, T step,
                                                             T young) try {
  const zm::BoundaryCall boundary;
  curve.SetSize(0);
  if (!(step > 0)) return 0;
  const T limit = static_cast<T>(MAX_HOLLOMON_POINTS);

  T endStrain = 1;
  if (maxStress > K * PowerRoundedToFloat(T(1), n)) {
    // The first index past 1/step, then on until the law reaches the cap.
    const T first = T(1) - std::trunc(-T(kOnePlusEpsilon) / step);
    if (!(first < limit)) return 0;
    std::uint64_t i = static_cast<std::uint64_t>(first);
    while (K * PowerRoundedToFloat(static_cast<T>(i) * step, n) < maxStress) {
      if (++i >= MAX_HOLLOMON_POINTS) return 0;
    }
    endStrain = static_cast<T>(i) * step;
  }

  const T span = std::trunc((endStrain + T(kFloatEpsilon)) / step);
  if (!(span < limit)) return 0;
  const std::uint64_t count = static_cast<std::uint64_t>(span) + 1;
  if (count < 2) return 0;
  if (young <= 0) return 0;

  curve.SetSize(count);
  curve[0] = Point2(T(0), yieldStress);
  for (std::uint64_t i = 1; i < count; ++i) {
    const T strain = static_cast<T>(i) * step;
    T stress = K * PowerRoundedToFloat(strain, n);
    if (stress < yieldStress) {
      stress = yieldStress;
    } else if (maxStress > yieldStress && stress > maxStress) {
      stress = maxStress;
    }
    curve[i] = Point2(strain - stress / young, stress);  // the elastic part removed
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  curve.RemoveAll();
  return 0;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeKrupkowskyCurvePoints(Curve& curve, T K, T n, T maxStress, T eps0) try {
  const zm::BoundaryCall boundary;
  curve.SetSize(kSamplerPoints);
  for (int i = 0; i < kSamplerPoints; ++i) {
    const T strain = SamplerStrain<T>(i);
    curve[i] = Point2(strain, CapAt(K * PowerRoundedToFloat(strain + eps0, n), maxStress));
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  curve.RemoveAll();
  return 0;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputePowerCurvePoints(Curve& curve, T a, T b, T n, T maxStress) try {
  const zm::BoundaryCall boundary;
  curve.SetSize(kSamplerPoints);
  for (int i = 0; i < kSamplerPoints; ++i) {
    const T strain = SamplerStrain<T>(i);
    curve[i] = Point2(strain, CapAt(b * PowerRoundedToFloat(strain, n) + a, maxStress));
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  curve.RemoveAll();
  return 0;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeKinematicCurvePoints(Curve& curve, T y0, T rate, T amplitude,
                                                              T maxStress) try {
  const zm::BoundaryCall boundary;
  curve.SetSize(kSamplerPoints);
  for (int i = 0; i < kSamplerPoints; ++i) {
    const T strain = SamplerStrain<T>(i);
    curve[i] = Point2(strain, CapAt((T(1) - std::exp(-rate * strain)) * amplitude + y0, maxStress));
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  curve.RemoveAll();
  return 0;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeKeelerCurvePoints(Curve& curve, T thickness, T n) try {
  const zm::BoundaryCall boundary;
  curve.SetSize(kKeelerPoints);
  // Plane-strain limit in percent; the thickness gain saturates above n = 0.21.
  T fld0 = T(23.0) + T(kKeelerThicknessSlope) * thickness;
  if (n < T(kKeelerReferenceN)) fld0 = fld0 * n / T(kKeelerReferenceN);
  const T planeStrain = std::log(fld0 / T(100) + T(1));

  // Left branch: minor strains -80 % .. -1 %, along the line of constant thickness.
  for (int j = -kKeelerLeftPoints; j < 0; ++j) {
    const T minor = std::log(static_cast<T>(j) / T(100) + T(1));
    curve[j + kKeelerLeftPoints] = Point2(minor, planeStrain - minor);
  }
  // Right branch: minor strains 0 % .. 99 %, saturating towards FLD0 + 18 %.
  for (int k = 0; k < kKeelerPoints - kKeelerLeftPoints; ++k) {
    const T minor = std::log(static_cast<T>(k) / T(100) + T(1));
    const T major = (T(1) - std::exp(-T(0.05838) * static_cast<T>(k))) * T(18) + fld0;
    const T y = (major >= static_cast<T>(k)) ? std::log(major / T(100) + T(1)) : minor;
    curve[k + kKeelerLeftPoints] = Point2(minor, y);
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  curve.RemoveAll();
  return 0;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeHill3DCoeff(T r0, T r45, T r90, T& F, T& G, T& N) {
  const T r0Plus1 = r0 + T(1);
  if (r0Plus1 == T(0)) return 0;
  G = T(2) / r0Plus1;
  const T denominator = r0Plus1 * r90;
  if (denominator == T(0)) return 0;
  F = T(2) * r0 / denominator;
  N = (T(2) * r45 + T(1)) * (r0 + r90) / denominator;
  return 1;
}

template <class T>
unsigned char ZmMathMaterialT<T>::ComputeLankfordCoeff(T F, T G, T N, T& r0, T& r45, T& r90) {
  if (F == T(0)) return 0;
  if ((G + T(1)) * (G + T(1)) - (T(2) - G) * F - T(1) == T(0)) return 0;
  r0 = T(2) / G - T(1);
  r90 = (T(2) - G) / F;
  r45 = (T(2) - G) * N / (T(2) * G - G * G + T(2) * F - F * G) - T(0.5);
  return 1;
}

template <class T>
const WbErrObj* ZmMathMaterialT<T>::ComputeMoonleyRivlinCoefficientsFromPoints(const Curve& pts, T& c10, T& c01) {
  const std::uint64_t count = pts.GetSize();
  if (count < 2) return FailFit(L"Error while computing the coefficients : 2 points (at least) are mandatory");
  T st = 0, stt = 0, sr = 0, str = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    const T stretch = pts[i].x * T(kPercent) + T(1);
    if (stretch == T(0)) return FailFit(L"Error while computing the coefficients : division by 0");
    const T t = T(1) / stretch + T(kStretchOffset);
    if (t == T(0)) return FailFit(L"Error while computing the coefficients : division by 0");
    const T r = (pts[i].y * T(0.5)) / (T(1) / t - t * t);
    st += t;
    stt += t * t;
    sr += r;
    str += r * t;
  }
  const T m = static_cast<T>(count);
  const T covariance = (str - st * sr / m) / (m - T(1));
  if (covariance == T(0)) return FailFit(L"Error while computing the coefficients : division by 0");
  c01 = covariance / ((stt - st * st / m) / (m - T(1)));
  c10 = (sr - c01 * st) / m;
  return nullptr;
}

template class ZmMathMaterialT<double>;
template class ZmMathMaterialT<float>;
