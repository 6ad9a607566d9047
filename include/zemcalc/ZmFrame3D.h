#pragma once

// ZmFrame3D: a Cartesian frame in double precision (no float twin) whose interface works on
// plain double arrays: an origin o and three axes, the columns of R (m[row][col] of the 3x3
// matrix: column 0 the X axis, 1 the Y axis, 2 the Z axis), with
//
//   PointLocalToGlobal(p)   = R p + o        PointGlobalToLocal(p)   = R^T (p - o)
//   VectorLocalToGlobal(v)  = R v            VectorGlobalToLocal(v)  = R^T v
//   Tensor2LocalToGlobal(T) = R T R^T        Tensor2GlobalToLocal(T) = R^T T R
//
// 3x3 arrays (axes, tensors) are rows first. Nothing re-orthonormalises the axes (SetAxes,
// SetXAxis ... store what they are given) and the conversions use R^T as the inverse, so
// callers must supply orthonormal axes. Every conversion computes into a temporary before it
// writes its output, so the output may be the input; the one-array forms work in place.
// A null pointer or an axis index outside 0 ... 2 makes a member do nothing.
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint3.h"

class ZMCALC_API ZmFrame3D {
public:
  // Origin (0, 0, 0), identity axes.
  ZmFrame3D();
  ZmFrame3D(const ZmFrame3D&) = default;
  ZmFrame3D& operator=(const ZmFrame3D&) = default;
  // As SetMatrix.
  explicit ZmFrame3D(const ZmMatrix4d& matrix);
  // Axes by CreateFrom3Point(p0, p1, p2), origin p0 (a null pointer reads as the invalid point).
  ZmFrame3D(double* const p0, double* const p1, double* const p2);
  virtual ~ZmFrame3D();

  void GetOrigin(double* const origin) const;
  void SetOrigin(const double* const origin);
  // Columns 0, 1 and 2.
  void GetXAxis(double* const axis) const { GetAxis(0, axis); }
  void GetYAxis(double* const axis) const { GetAxis(1, axis); }
  void GetZAxis(double* const axis) const { GetAxis(2, axis); }
  void SetXAxis(const double* const axis) { SetAxis(0, axis); }
  void SetYAxis(const double* const axis) { SetAxis(1, axis); }
  void SetZAxis(const double* const axis) { SetAxis(2, axis); }
  // The nine coefficients of R, rows first.
  void GetAxes(double (*const axes)[3]) const;
  void SetAxes(const double (*const axes)[3]);
  // The homogeneous 4x4 matrix, rows first: rows 0 to 2 are (row r of R, o_r), row 3 is
  // (0, 0, 0, 1). The identity for the default frame.
  void GetMatrix(double (*const matrix)[4]) const;
  // o = column 3 of rows 0 to 2, R = the upper left 3x3 block; the last row is ignored.
  void SetMatrix(const ZmMatrix4d& matrix);

  void PointGlobalToLocal(const double* const in, double* const out) const;
  void PointGlobalToLocal(double* const inOut) const { PointGlobalToLocal(inOut, inOut); }
  void PointLocalToGlobal(const double* const in, double* const out) const;
  void PointLocalToGlobal(double* const inOut) const { PointLocalToGlobal(inOut, inOut); }
  void VectorGlobalToLocal(const double* const in, double* const out) const;
  void VectorGlobalToLocal(double* const inOut) const { VectorGlobalToLocal(inOut, inOut); }
  void VectorLocalToGlobal(const double* const in, double* const out) const;
  void VectorLocalToGlobal(double* const inOut) const { VectorLocalToGlobal(inOut, inOut); }
  // Second-order tensors (3x3, rows first).
  void Tensor2GlobalToLocal(const double (*const in)[3], double (*const out)[3]) const;
  void Tensor2GlobalToLocal(double (*const inOut)[3]) const { Tensor2GlobalToLocal(inOut, inOut); }
  void Tensor2LocalToGlobal(const double (*const in)[3], double (*const out)[3]) const;
  void Tensor2LocalToGlobal(double (*const inOut)[3]) const { Tensor2LocalToGlobal(inOut, inOut); }

protected:
  // The axes of three points, e = p1 - p0, b = p2 - p0: X the unit vector of e
  // (ZmVector3d GetDirection, the invalid vector when e is zero), Z = e x b normalised by
  // unitize(1e-6f) (left as it is when too short: collinear points give a degenerate frame),
  // Y = Z x X. The origin is not touched.
  void CreateFrom3Point(const ZmPoint3d& p0, const ZmPoint3d& p1, const ZmPoint3d& p2);
  // Column i.
  void GetAxis(int i, double* const axis) const;
  void SetAxis(int i, const double* const axis);

private:
  ZmPoint3d m_origin;
  ZmMatrix3d m_axes;
};
