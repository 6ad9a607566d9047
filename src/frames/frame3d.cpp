#include "zemcalc/ZmFrame3D.h"

#include "foundation/build_info.h"
#include "frames/frame_kernels.h"

ZM_BUILD_INFO(frame3d)

namespace {

using Placement = zm::frames::Placement<double>;

// A point or vector through the Cartesian placement, written to out only after it is complete.
void ConvertCoords(const Placement& placement, bool toGlobal, bool isPoint, const double* in, double* out) {
  if (!in || !out) return;
  const WbCoord3Dd c(in[0], in[1], in[2]);
  WbCoord3Dd result;
  if (toGlobal) {
    zm::frames::LocalToGlobal(placement, 0, isPoint, c, result);
  } else {
    zm::frames::GlobalToLocal(placement, 0, isPoint, c, result);
  }
  out[0] = result.x;
  out[1] = result.y;
  out[2] = result.z;
}

// out = A T B with A = R, B = R^T (toGlobal) or A = R^T, B = R; each product summed in
// increasing index, the result copied to out once complete.
void ConvertTensor(const Placement& placement, bool toGlobal, const double (*in)[3], double (*out)[3]) {
  if (!in || !out) return;
  const auto a = [&](int i, int k) { return toGlobal ? placement.m[i][k] : placement.m[k][i]; };
  double left[3][3], result[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) left[i][j] = a(i, 0) * in[0][j] + a(i, 1) * in[1][j] + a(i, 2) * in[2][j];
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) result[i][j] = left[i][0] * a(j, 0) + left[i][1] * a(j, 1) + left[i][2] * a(j, 2);
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) out[i][j] = result[i][j];
  }
}

}  // namespace

ZmFrame3D::ZmFrame3D() : m_origin(0, 0, 0) {}

ZmFrame3D::ZmFrame3D(const ZmMatrix4d& matrix) : ZmFrame3D() { SetMatrix(matrix); }

ZmFrame3D::ZmFrame3D(double* const p0, double* const p1, double* const p2) : ZmFrame3D() {
  const ZmPoint3d origin(p0);
  CreateFrom3Point(origin, ZmPoint3d(p1), ZmPoint3d(p2));
  m_origin = origin;
}

ZmFrame3D::~ZmFrame3D() = default;

void ZmFrame3D::CreateFrom3Point(const ZmPoint3d& p0, const ZmPoint3d& p1, const ZmPoint3d& p2) {
  const ZmVector3d e = p1 - p0, b = p2 - p0;
  const ZmVector3d x = e.GetDirection();
  ZmVector3d z = e.cross(b);
  z.unitize(zm::kTolerance6);
  m_axes.SetColumn(0, x);
  m_axes.SetColumn(1, z.cross(x));
  m_axes.SetColumn(2, z);
}

void ZmFrame3D::GetAxis(int i, double* const axis) const {
  if (!axis || i < 0 || i > 2) return;
  for (int r = 0; r < 3; ++r) axis[r] = m_axes[r][i];
}

void ZmFrame3D::SetAxis(int i, const double* const axis) {
  if (!axis || i < 0 || i > 2) return;
  for (int r = 0; r < 3; ++r) m_axes[r][i] = axis[r];
}

void ZmFrame3D::GetOrigin(double* const origin) const {
  if (!origin) return;
  origin[0] = m_origin.x;
  origin[1] = m_origin.y;
  origin[2] = m_origin.z;
}

void ZmFrame3D::SetOrigin(const double* const origin) {
  if (origin) m_origin = ZmPoint3d(origin);
}

void ZmFrame3D::GetAxes(double (*const axes)[3]) const {
  if (axes) m_axes.GetCoefs(axes);
}

void ZmFrame3D::SetAxes(const double (*const axes)[3]) {
  if (axes) m_axes.SetCoefs(axes);
}

void ZmFrame3D::GetMatrix(double (*const matrix)[4]) const {
  if (!matrix) return;
  ZmMatrix4d(m_axes, ZmVector3d(m_origin)).GetCoefs(matrix);
}

void ZmFrame3D::SetMatrix(const ZmMatrix4d& matrix) {
  m_origin = ZmPoint3d(matrix.GetTranslation());
  m_axes = matrix.Extract3x3Matrix();
}

void ZmFrame3D::PointGlobalToLocal(const double* const in, double* const out) const {
  ConvertCoords(Placement(m_origin, m_axes), false, true, in, out);
}

void ZmFrame3D::PointLocalToGlobal(const double* const in, double* const out) const {
  ConvertCoords(Placement(m_origin, m_axes), true, true, in, out);
}

void ZmFrame3D::VectorGlobalToLocal(const double* const in, double* const out) const {
  ConvertCoords(Placement(m_origin, m_axes), false, false, in, out);
}

void ZmFrame3D::VectorLocalToGlobal(const double* const in, double* const out) const {
  ConvertCoords(Placement(m_origin, m_axes), true, false, in, out);
}

void ZmFrame3D::Tensor2GlobalToLocal(const double (*const in)[3], double (*const out)[3]) const {
  ConvertTensor(Placement(m_origin, m_axes), false, in, out);
}

void ZmFrame3D::Tensor2LocalToGlobal(const double (*const in)[3], double (*const out)[3]) const {
  ConvertTensor(Placement(m_origin, m_axes), true, in, out);
}
