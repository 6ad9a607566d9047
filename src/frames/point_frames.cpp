// The members of points and planes that need a frame. They are declared with their classes,
// which only forward-declare ZmFrameT, and defined here, above the frames.
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmPlane.h"
#include "foundation/build_info.h"
#include "frames/frame_kernels.h"

ZM_BUILD_INFO(point_frames)

template <class T>
unsigned char ZmPoint3T<T>::Rotate(const ZmFrameT<T>& frame) {
  const zm::frames::Placement<T> placement(frame.GetOrigin(), frame.GetMatrix());
  if (!placement.usable || !zm::metric::IsUsable(*this)) return 0;
  WbCoord3DT<T> global;
  zm::frames::LocalToGlobal(placement, ZmFrameCartesian, true, *this, global);
  *this = ZmPoint3T(global);
  return 1;
}

template <class T>
ZmPoint2T<float> ZmPoint3T<T>::GetPlane2DCoords(const ZmPlaneT<T>& plane) const {
  ZmFrameT<T> frame;
  if (!plane.GetFrame(frame)) return ZmPoint2T<float>(WbCoord2DT<float>::INVALID);
  return ZmPoint2T<float>(frame.GlobalToLocal(*this));
}

template <class T>
unsigned char ZmPlaneT<T>::GetFrame(ZmFrameT<T>& frame) const {
  if (!zm::metric::AreUsable(m_point, m_normal)) return 0;
  // X towards the X-axis point when the product with the normal leaves a direction: the
  // reference form of the frame constructor takes X along the part of the offset that is
  // orthogonal to the normal.
  const Vector3 offset = m_xAxisPoint - m_point;
  Vector3 y = m_normal.cross(offset);
  const bool towardsPoint = zm::metric::AreUsable(m_xAxisPoint) && y.unitize(T(zm::kTolerance6));
  frame = ZmFrameT<T>(m_point, m_normal, ZmFrameCartesian, towardsPoint ? &offset : nullptr);
  return 1;
}

template unsigned char ZmPoint3T<double>::Rotate(const ZmFrameT<double>&);
template unsigned char ZmPoint3T<float>::Rotate(const ZmFrameT<float>&);
template ZmPoint2T<float> ZmPoint3T<double>::GetPlane2DCoords(const ZmPlaneT<double>&) const;
template ZmPoint2T<float> ZmPoint3T<float>::GetPlane2DCoords(const ZmPlaneT<float>&) const;
template unsigned char ZmPlaneT<double>::GetFrame(ZmFrameT<double>&) const;
template unsigned char ZmPlaneT<float>::GetFrame(ZmFrameT<float>&) const;
