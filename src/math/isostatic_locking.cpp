// 3-2-1 (isostatic) relocation of a measured point set onto its nominal locators.
#include <wbcore/WbLocalize.h>

#include "foundation/build_info.h"
#include "math/metric_kernels.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmPlane.h"
#include "zemcalc/ZmPoint3.h"

ZM_BUILD_INFO(isostatic_locking)

namespace {

const wchar_t* const kCoincidentMessage =
    L"Two reference points are too close from each other to compute the isostatic locking";
const wchar_t* const kIndexMessage = L"Reference point %d is not a point of the isostatic locking (%llu points)";
const wchar_t* const kSizeMessage =
    L"The isostatic locking needs one nominal point per current point (%llu nominal, %llu current)";

template <class T>
struct ReferenceTriple {
  ZmPoint3T<T> p[3];
};

// A reference index: -1 (absent) for i2 and i3, else one of the points.
bool IsIndexIn(int index, std::uint64_t count, bool optional) {
  if (optional && index == -1) return true;
  return index >= 0 && static_cast<std::uint64_t>(index) < count;
}

template <class T>
bool AnyCoincide(const ReferenceTriple<T>& r) {
  return r.p[0].DistanceToPoint(r.p[1]) == T(0) || r.p[0].DistanceToPoint(r.p[2]) == T(0) ||
         r.p[1].DistanceToPoint(r.p[2]) == T(0);
}

// The locators themselves: the point of i1, and those of i2 and i3, or the point of i1 moved
// by one along x (for i2) and along y (for i3) when absent: one locator yields a translation,
// two a translation and a rotation about the missing direction.
template <class T>
ReferenceTriple<T> LocatorTriple(const WbArrayTempl<ZmPoint3T<T>>& points, int i1, int i2, int i3) {
  ReferenceTriple<T> r;
  r.p[0] = points[i1];
  r.p[1] = i2 != -1 ? points[i2] : r.p[0] + ZmVector3T<T>::UNIT_X;
  r.p[2] = i3 != -1 ? points[i3] : r.p[0] + ZmVector3T<T>::UNIT_Y;
  return r;
}

// The reference points of a locator point a against two locating planes: a itself, its foot
// on the line where the planes meet, and its projection onto the primary plane. A derived
// point that falls on a (a already on the line, or on the primary plane) is moved off it by
// the normal of the secondary, respectively primary, plane, so that the three never coincide.
template <class T>
ReferenceTriple<T> PlaneTriple(const ZmPoint3T<T>& a, const ZmPlaneT<T>& primary, const ZmPlaneT<T>& secondary,
                               const ZmPoint3T<T>& linePoint, const ZmVector3T<T>& lineDir) {
  ReferenceTriple<T> r;
  r.p[0] = a;
  r.p[1] = linePoint + lineDir * ZmVector3T<T>(a - linePoint).dot(lineDir);
  if (r.p[1] == a) r.p[1] = a + secondary.GetNormal();
  r.p[2] = primary.ProjectPoint(a);
  if (r.p[2] == a) r.p[2] = a + primary.GetNormal();
  return r;
}

// A plane carried by a rigid move given as a pair of frames: read in `from`, placed in `to`.
template <class T>
ZmPlaneT<T> CarryPlane(const ZmPlaneT<T>& plane, const ZmFrameT<T>& from, const ZmFrameT<T>& to) {
  unsigned char ok = 0;
  ZmPlaneT<T> carried(to.LocalToGlobal(from.GlobalToLocal(plane.GetPointOnPlane())),
                      to.LocalToGlobal(from.GlobalToLocal(plane.GetNormal())), ok);
  return carried;
}

}  // namespace

template <class T>
const WbErrObj* ZmPoint3T<T>::ComputeIsoStaticLocking(const WbArrayTempl<ZmPoint3T>& nominal, int i1, int i2, int i3,
                                                      const WbArrayTempl<ZmPlaneT<T>>& planes,
                                                      const ZmVector3T<T>& weights,
                                                      WbArrayTempl<ZmPoint3T>& positions) {
  const std::uint64_t count = positions.GetSize();
  if (nominal.GetSize() != count) {
    return WbSetError(WbLocalizeStringExW(kSizeMessage, 0), static_cast<unsigned long long>(nominal.GetSize()),
                      static_cast<unsigned long long>(count));
  }
  const int indices[3] = {i1, i2, i3};
  for (int k = 0; k < 3; ++k) {
    if (!IsIndexIn(indices[k], count, k > 0)) {
      return WbSetError(WbLocalizeStringExW(kIndexMessage, 0), indices[k], static_cast<unsigned long long>(count));
    }
  }

  ReferenceTriple<T> target = LocatorTriple(nominal, i1, i2, i3);
  ReferenceTriple<T> source = LocatorTriple(positions, i1, i2, i3);
  if (AnyCoincide(source)) return WbSetError(WbLocalizeStringExW(kCoincidentMessage, 0));

  // With two locating planes (given where the nominal part lies) and three locators, the
  // planes are carried to the current part by the move of its locators, and the reference
  // points become those of the point of i3 against the planes in each position. Parallel
  // planes, which meet in no line, and fewer than three locators leave the locators as they are.
  ZmPoint3T linePoint;
  ZmVector3T<T> lineDir;
  if (planes.GetSize() >= 2 && i2 != -1 && i3 != -1 && planes[0].IntersectWithPlane(planes[1], linePoint, lineDir)) {
    if (AnyCoincide(target)) return WbSetError(WbLocalizeStringExW(kCoincidentMessage, 0));
    const ZmFrameT<T> nominalFrame(target.p[0], target.p[1], target.p[2], 2, ZmFrameCartesian);
    const ZmFrameT<T> currentFrame(source.p[0], source.p[1], source.p[2], 2, ZmFrameCartesian);
    const ZmPlaneT<T> primary = CarryPlane(planes[0], nominalFrame, currentFrame);
    const ZmPlaneT<T> secondary = CarryPlane(planes[1], nominalFrame, currentFrame);
    ZmPoint3T currentLinePoint;
    ZmVector3T<T> currentLineDir;
    primary.IntersectWithPlane(secondary, currentLinePoint, currentLineDir);
    target = PlaneTriple(nominal[i3], planes[0], planes[1], linePoint, lineDir);
    source = PlaneTriple(positions[i3], primary, secondary, currentLinePoint, currentLineDir);
    if (AnyCoincide(source)) return WbSetError(WbLocalizeStringExW(kCoincidentMessage, 0));
  }

  const ZmFrameT<T> a(target.p[0], target.p[1], target.p[2], 2, ZmFrameCartesian);
  const ZmFrameT<T> b(source.p[0], source.p[1], source.p[2], 2, ZmFrameCartesian);
  for (std::uint64_t k = 0; k < count; ++k) {
    const ZmVector3T<T> d = a.LocalToGlobal(b.GlobalToLocal(positions[k])) - nominal[k];
    positions[k] = nominal[k] + ZmVector3T<T>(d.x * weights.x, d.y * weights.y, d.z * weights.z);
  }
  return nullptr;
}

template const WbErrObj* ZmPoint3T<double>::ComputeIsoStaticLocking(const WbArrayTempl<ZmPoint3T<double>>&, int, int,
                                                                    int, const WbArrayTempl<ZmPlaneT<double>>&,
                                                                    const ZmVector3T<double>&,
                                                                    WbArrayTempl<ZmPoint3T<double>>&);
template const WbErrObj* ZmPoint3T<float>::ComputeIsoStaticLocking(const WbArrayTempl<ZmPoint3T<float>>&, int, int, int,
                                                                   const WbArrayTempl<ZmPlaneT<float>>&,
                                                                   const ZmVector3T<float>&,
                                                                   WbArrayTempl<ZmPoint3T<float>>&);
