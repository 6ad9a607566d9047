#pragma once

// Local coordinate frames: ZmFramed and its float twin ZmFramef. A frame is an origin, three
// axes and a coordinate type that says how local coordinates are read:
//
//   ZmFrameCartesian   (x, y, z)
//   ZmFrameCylindrical (r, theta, z), theta in degrees from the X axis in the XY plane
//   ZmFrameSpherical   (rho, theta, phi), theta the azimuth from the X axis in the XY plane,
//                      phi the elevation above the XY plane, both in degrees
//
// The axes are the COLUMNS of the 3x3 matrix (m[row][col] of ZmMatrix3T): column 0 is the X
// axis, column 1 the Y axis, column 2 the Z axis, each a unit vector in global coordinates.
// Nothing re-orthonormalises them: the conversions use the transpose as the inverse, so
// callers that set the axes themselves must give an orthonormal, right-handed triple.
//
// Conversions between global and local coordinates, with M the axes matrix and o the origin:
//   LocalToGlobal(point)  = o + M c, c the local coordinates turned into Cartesian ones
//   GlobalToLocal(point)  = M^T (p - o), then turned into the frame's coordinate type
//   LocalToGlobal(vector) = M c;  GlobalToLocal(vector) = M^T v, then turned into the type
// The type conversions use pi/180 = 0.017453292519943295 towards Cartesian and
// 180/pi = 57.29577951308232 from it (the double values, rounded in the float twin). From
// Cartesian: r or rho below 1e-6f (the float value, widened) gives the angles 0; theta is
// acos(x / r) (x / (rho cos phi) for a sphere), the quotient clamped to [-1, 1] against
// rounding, negated when y < 0, so it lies in (-180, 180]; phi = asin(z / rho) lies in
// [-90, 90]; a spherical point on the polar axis (x = y = 0, or rho cos phi not positive by
// rounding) gives theta = 0. GlobalToLocal inverts LocalToGlobal for local coordinates in
// those ranges (and r, rho >= 0); LocalToGlobal inverts GlobalToLocal for every global one.
//
// A 2D point or vector counts as z = 0 and gets the first two local (or global) components.
// A frame is converted as a Cartesian object whatever this frame's type: its origin as a
// point and its axes as vectors (so the converted axes stay orthonormal and right-handed);
// the converted frame keeps its own type.
//
// Precision. Arguments of the other twin are accepted: every computation runs in the wider of
// the frame's and the argument's precision and the result is rounded to the class it is
// returned in.
//
// Round trips (GlobalToLocal then LocalToGlobal, of points, vectors and frames) of an
// orthonormal frame return the input to within 1e-12 (double) or 1e-5 (float) times the size
// of the coordinates involved (the largest of the point's and the origin's components, and
// 1). Cylindrical and spherical frames read theta through acos, which cannot resolve angles
// closer to 0 or 180 degrees than about sqrt(2 eps) radians (1.5e-8 in double, 3.5e-4 in
// float): their round trips hold to 1e-7 (double) or 1e-3 (float) times that size.
//
// Bad input. A result is the invalid point, vector or frame (every coordinate the marker
// -1.0e32f widened) when the argument or this frame holds the invalid marker or a NaN, and
// when the frame type is not one of the three (GlobalToLocal and LocalToGlobal of points and
// vectors). No conversion allocates; none throws.
#include <cstdint>

#include <wbcore/WbArray.h>
#include <wbcore/WbString.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

// Stored as an int: any other value read from outside is a valid, unknown type, which the
// conversions answer with the invalid result.
enum ZmFrameType : int { ZmFrameCartesian = 0, ZmFrameCylindrical = 1, ZmFrameSpherical = 2 };

template <class T>
class ZMCALC_API ZmFrameT {
public:
  using Scalar = T;
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  using Matrix3 = ZmMatrix3T<T>;

  // GetDirectionAxis when no axis lies within the angle.
  static constexpr int kNoAxis = -1234567890;

  // Origin (0, 0, 0), identity axes, Cartesian.
  ZmFrameT();
  ZmFrameT(const ZmFrameT&) = default;
  ZmFrameT& operator=(const ZmFrameT&) = default;
  // The other precision, field by field (implicit, like every twin conversion).
  template <class U, std::enable_if_t<!std::is_same<U, T>::value, int> = 0>
  ZmFrameT(const ZmFrameT<U>& o) : m_origin(o.GetOrigin()), m_matrix(o.GetMatrix()), m_type(o.GetType()) {}
  // The axes stored as passed into the columns.
  ZmFrameT(const Vector3& x, const Vector3& y, const Vector3& z, const Point3& origin, ZmFrameType type);

  // The frame of three points: origin p0, e = p1 - p0, b = p2 - p0, every normalisation by
  // unitize(1e-6f), which leaves a vector too short to normalise as it is (three collinear
  // points therefore give a degenerate frame, not a failure):
  //   mode 0: Z = unit(e), Y = unit(Z x b), X = Y x Z   (Z along p0->p1, Y normal to the plane)
  //   mode 1: X = unit(e), Y = unit(b x X), Z = X x Y   (X along p0->p1, Z in the plane)
  //   mode 2: X = unit(e), Z = unit(X x b), Y = Z x X   (X along p0->p1, Y in the plane towards p2)
  //   any other mode: identity axes.
  ZmFrameT(const ZmPoint3T<double>& p0, const ZmPoint3T<double>& p1, const ZmPoint3T<double>& p2, int mode,
           ZmFrameType type);
  ZmFrameT(const ZmPoint3T<float>& p0, const ZmPoint3T<float>& p1, const ZmPoint3T<float>& p2, int mode,
           ZmFrameType type);
  // The frame at origin whose Z axis is the direction normalised by unitize(1e-6f). Without a
  // reference (null) X and Y are the orthogonal completion of Z (ZmMath OrthogonalVectors, which
  // also turns a zero direction into Z = (0, 0, 1)). With a reference, Y = direction x reference
  // (the direction as passed) normalised by unitize(1e-6f) and X = Y x Z: X lies towards the
  // reference's component orthogonal to Z.
  ZmFrameT(const ZmPoint3T<double>& origin, const ZmVector3T<double>& direction, ZmFrameType type,
           const ZmVector3T<double>* reference = nullptr);
  ZmFrameT(const ZmPoint3T<float>& origin, const ZmVector3T<float>& direction, ZmFrameType type,
           const ZmVector3T<float>* reference = nullptr);

  // Exact comparison of origin, axes and type.
  unsigned char operator==(const ZmFrameT& o) const {
    return (m_origin == o.m_origin && m_matrix == o.m_matrix && m_type == o.m_type) ? 1 : 0;
  }
  unsigned char operator!=(const ZmFrameT& o) const { return (*this == o) ? 0 : 1; }

  // --- accessors
  const Point3& GetOrigin() const { return m_origin; }
  void SetOrigin(const ZmPoint3T<double>& origin) { m_origin = Point3(origin); }
  void SetOrigin(const ZmPoint3T<float>& origin) { m_origin = Point3(origin); }
  const Matrix3& GetMatrix() const { return m_matrix; }
  void SetMatrix(const Matrix3& matrix) { m_matrix = matrix; }
  // The three axes into the columns, as passed.
  void SetMatrix(const ZmVector3T<double>& x, const ZmVector3T<double>& y, const ZmVector3T<double>& z);
  void SetMatrix(const ZmVector3T<float>& x, const ZmVector3T<float>& y, const ZmVector3T<float>& z);
  ZmFrameType GetType() const { return m_type; }

  // Axis i (column i); the invalid vector for an index outside 0 ... 2.
  Vector3 GetVector(int i) const;
  // Writes ROW i of the matrix, not column i: this form has always read rows and callers rely
  // on it. For an orthonormal frame row i holds the i-th components of the three axes. 0
  // without writing for an index outside 0 ... 2.
  unsigned char GetVector(int i, ZmVector3T<double>& row) const;
  // Writes axis i (column i); 0 without writing for an index outside 0 ... 2.
  unsigned char GetVector(int i, ZmVector3T<float>& axis) const;
  // The three axes (columns 0, 1, 2).
  void GetVectors(Vector3& x, Vector3& y, Vector3& z) const;

  // Identity axes; the origin moves to (0, 0, 0) when resetOrigin is non-zero.
  void SetIdentity(unsigned char resetOrigin);

  // Axes from X and Z that must already be orthogonal: copies of z, then x, are normalised by
  // unitize(1e-6f) and y = z x x; the columns become (x, y, z) and the result is 1 when |y|
  // rounded to float exceeds 0.999999f. Otherwise (a vector too short, or x and z not
  // orthogonal to within that) the result is 0 and the frame is unchanged.
  unsigned char SetMatrixByXAndZ(const ZmVector3T<double>& x, const ZmVector3T<double>& z);
  unsigned char SetMatrixByXAndZ(const ZmVector3T<float>& x, const ZmVector3T<float>& z);
  // Axes from Z, kept exactly (normalised), and an X re-orthogonalised against it: with the
  // unit copies of z and x, y = unit(z x x) and x' = y x z; columns (x', y, z), result 1. A
  // vector too short to normalise, or x parallel to z, gives 0 and leaves the frame unchanged.
  unsigned char SetMatrixByZAndX(const ZmVector3T<double>& z, const ZmVector3T<double>& x);
  unsigned char SetMatrixByZAndX(const ZmVector3T<float>& z, const ZmVector3T<float>& x);

  // --- conversions (see the top of this file)
  ZmPoint3T<double> GlobalToLocal(const ZmPoint3T<double>& p) const { return Convert(p, 0, 1); }
  ZmPoint3T<float> GlobalToLocal(const ZmPoint3T<float>& p) const { return Convert(p, 0, 1); }
  ZmVector3T<double> GlobalToLocal(const ZmVector3T<double>& v) const { return ZmVector3T<double>(Convert(v, 0, 0)); }
  ZmVector3T<float> GlobalToLocal(const ZmVector3T<float>& v) const { return ZmVector3T<float>(Convert(v, 0, 0)); }
  ZmPoint2T<double> GlobalToLocal(const ZmPoint2T<double>& p) const { return ZmPoint2T<double>(Convert(Lift(p), 0, 1)); }
  ZmPoint2T<float> GlobalToLocal(const ZmPoint2T<float>& p) const { return ZmPoint2T<float>(Convert(Lift(p), 0, 1)); }
  ZmVector2T<double> GlobalToLocal(const ZmVector2T<double>& v) const {
    return ZmVector2T<double>(Convert(Lift(v), 0, 0));
  }
  ZmVector2T<float> GlobalToLocal(const ZmVector2T<float>& v) const { return ZmVector2T<float>(Convert(Lift(v), 0, 0)); }
  ZmFrameT<double> GlobalToLocal(const ZmFrameT<double>& frame) const { return ConvertFrame(frame, 0); }
  ZmFrameT<float> GlobalToLocal(const ZmFrameT<float>& frame) const { return ConvertFrame(frame, 0); }
  // count points from in to out (in may equal out); nothing for a null pointer or count <= 0.
  void GlobalToLocal(int count, const ZmPoint3T<double>*& in, ZmPoint3T<double>*& out) const {
    ConvertPoints(count, in, out, 0);
  }
  void GlobalToLocal(int count, const ZmPoint3T<float>*& in, ZmPoint3T<float>*& out) const {
    ConvertPoints(count, in, out, 0);
  }

  ZmPoint3T<double> LocalToGlobal(const ZmPoint3T<double>& p) const { return Convert(p, 1, 1); }
  ZmPoint3T<float> LocalToGlobal(const ZmPoint3T<float>& p) const { return Convert(p, 1, 1); }
  ZmVector3T<double> LocalToGlobal(const ZmVector3T<double>& v) const { return ZmVector3T<double>(Convert(v, 1, 0)); }
  ZmVector3T<float> LocalToGlobal(const ZmVector3T<float>& v) const { return ZmVector3T<float>(Convert(v, 1, 0)); }
  ZmPoint2T<double> LocalToGlobal(const ZmPoint2T<double>& p) const { return ZmPoint2T<double>(Convert(Lift(p), 1, 1)); }
  ZmPoint2T<float> LocalToGlobal(const ZmPoint2T<float>& p) const { return ZmPoint2T<float>(Convert(Lift(p), 1, 1)); }
  ZmVector2T<double> LocalToGlobal(const ZmVector2T<double>& v) const {
    return ZmVector2T<double>(Convert(Lift(v), 1, 0));
  }
  ZmVector2T<float> LocalToGlobal(const ZmVector2T<float>& v) const { return ZmVector2T<float>(Convert(Lift(v), 1, 0)); }
  ZmFrameT<double> LocalToGlobal(const ZmFrameT<double>& frame) const { return ConvertFrame(frame, 1); }
  ZmFrameT<float> LocalToGlobal(const ZmFrameT<float>& frame) const { return ConvertFrame(frame, 1); }
  void LocalToGlobal(int count, const ZmPoint3T<double>*& in, ZmPoint3T<double>*& out) const {
    ConvertPoints(count, in, out, 1);
  }
  void LocalToGlobal(int count, const ZmPoint3T<float>*& in, ZmPoint3T<float>*& out) const {
    ConvertPoints(count, in, out, 1);
  }
  // Every point of the array, in place.
  void LocalToGlobal(WbArrayTempl<ZmPoint3T<double>>& points) const;
  void LocalToGlobal(WbArrayTempl<ZmPoint3T<float>>& points) const;

  // --- queries
  // 1 when the origin and the three axes hold no invalid marker (the coordinate classes'
  // IsValid); orthonormality is not tested.
  unsigned char IsValid() const;
  // The axis nearest to dir, either way: for i = 0, 1, 2, a = ZmMath AngleDeg(dir, axis i) and
  // a' = 180 - a when a > 90, else a. Axis i is taken when a' < maxAngleDeg (strictly) and
  // a' is strictly below the best so far (ties keep the lower index); sign receives 1.0 when
  // a <= 90, else -1.0. kNoAxis (-1234567890), sign unwritten, when none qualifies, which is
  // always the case for a direction that cannot be normalised (zero, invalid, NaN).
  int GetDirectionAxis(const Vector3& dir, T maxAngleDeg, T& sign) const;
  // "v1=%s, v2=%s, v3=%s, pt=%s": the X, Y and Z axes with "%.3f" and the origin with "%.1f",
  // each through the coordinate class's GetString with its default separator.
  WbString DumpOneLine() const;
  // Does nothing; kept so that callers written against it still build.
  void WriteDebug(const wchar_t* title) const;

  // --- rotations, angles in degrees, right-hand rule. Each returns 1, or 0 and leaves the
  // frame unchanged when the axis cannot be normalised by unitize(1e-6f) or holds the
  // invalid marker or a NaN, or when the angle is not finite.
  // M = RotationMatrix(axis, angleDeg) M (ZmMath); the origin does not move.
  unsigned char Rotate(const Vector3& axis, T angleDeg);
  // The origin turns about the line through center (ZmPoint3 Rotate), then the axes as above;
  // also 0 and unchanged when center or the origin is unusable.
  unsigned char Rotate(const Point3& center, const Vector3& axis, T angleDeg);
  // Places this frame, read as local to other, in other's parent: the origin becomes
  // other's origin + other's M times it (ZmPoint3 Rotate(frame)) and M = M_other M. 0 and
  // unchanged when either frame holds the invalid marker or a NaN.
  unsigned char Rotate(const ZmFrameT& other);
  // Turns the frame about its own X, then its new Y, then its new Z axis by the three angles;
  // an angle that is 0 or the invalid marker is skipped. Returns 0 when a rotation fails.
  unsigned char RotateAroundAxes(T angleXDeg, T angleYDeg, T angleZDeg);
  // a = ZmMath AngleDeg(axis i, target) with axis i the column; when a is not 0 the frame
  // turns by Rotate(r x target, a) with r ROW i of the matrix, the row/column pairing of
  // GetVector(int, ZmVector3d&). For an orthonormal frame with a symmetric matrix this turns
  // axis i onto target. 0 for an index outside 0 ... 2, a target that cannot be normalised,
  // or a failed rotation; 1 otherwise (also when a is 0).
  unsigned char RotateAxis(int i, const Vector3& target);

  // --- relations to another frame. Both frames must be orthonormal and right-handed; each
  // member returns 1, or 0 without writing when either frame holds the invalid marker or a
  // NaN (or angles is null).
  //
  // The relative frame: other expressed in this frame, its origin converted as a point and
  // its axes as vectors (GlobalToLocal(other)), so that LocalToGlobal(euler) gives other back.
  // Its matrix M^T M_other is the rotation that GetRotationAngles decomposes.
  unsigned char GetEulerFrame(const ZmFrameT& other, ZmFrameT& euler) const;
  // The move from this frame to other in global terms: translation = other's origin - this
  // origin, and the angles (degrees, in the x, y, z of rotationDeg) about the fixed global
  // axes X, then Y, then Z that turn this frame's axes onto other's: M_other = Rz Ry Rx M.
  // Rotate(ZmV3dX, x), Rotate(ZmV3dY, y), Rotate(ZmV3dZ, z) then moving the origin by the
  // translation turn this frame into other. x and z lie in [-180, 180], y in [-90, 90].
  unsigned char GetGlobalTransformation(const ZmFrameT& other, Vector3& translation, Vector3& rotationDeg) const;
  // The angles (degrees) about this frame's own axes, X first, then the new Y, then the new Z,
  // that turn this frame's axes onto other's: M_other = M Rx(a0) Ry(a1) Rz(a2), so that
  // RotateAroundAxes(a0, a1, a2) gives other's axes. a0 and a2 lie in [-180, 180], a1 in
  // [-90, 90]; at a1 = +-90 (gimbal lock) the split between a0 and a2 is one of many.
  unsigned char GetRotationAngles(const ZmFrameT& other, T* const anglesDeg) const;
  // The single rotation that turns this frame's axes onto other's: angleDeg in [0, 180] about
  // the unit axis (global coordinates), so that Rotate(axis, angleDeg) gives other's axes.
  // Without rotation the angle is 0 and the axis (1, 0, 0).
  unsigned char GetRotationTo(const ZmFrameT& other, T& angleDeg, Vector3& axis) const;

protected:
  // Cartesian components into the frame type's coordinates (see the top of this file);
  // returns 0 and writes nothing for an unknown type.
  unsigned char ConvertCartesianCoord(T x, T y, T z, Point3& out) const;
  unsigned char ConvertCartesianCoord(T x, T y, T z, Vector3& out) const;
  // The frame type's coordinates into Cartesian components; 0 and nothing written for an
  // unknown type.
  unsigned char GetCartesianCoord(const Point3& in, T& x, T& y, T& z) const;
  unsigned char GetCartesianCoord(const Vector3& in, T& x, T& y, T& z) const;

private:
  template <class U>
  static WbCoord3DT<U> Lift(const WbCoord2DT<U>& c) {
    return WbCoord3DT<U>(c.x, c.y, U(0));
  }
  // One coordinate to global (toGlobal) or local, as a point (isPoint) or a vector.
  ZmPoint3T<double> Convert(const WbCoord3DT<double>& c, unsigned char toGlobal, unsigned char isPoint) const;
  ZmPoint3T<float> Convert(const WbCoord3DT<float>& c, unsigned char toGlobal, unsigned char isPoint) const;
  void ConvertPoints(int count, const ZmPoint3T<double>* in, ZmPoint3T<double>* out, unsigned char toGlobal) const;
  void ConvertPoints(int count, const ZmPoint3T<float>* in, ZmPoint3T<float>* out, unsigned char toGlobal) const;
  ZmFrameT<double> ConvertFrame(const ZmFrameT<double>& frame, unsigned char toGlobal) const;
  ZmFrameT<float> ConvertFrame(const ZmFrameT<float>& frame, unsigned char toGlobal) const;

  Point3 m_origin;
  Matrix3 m_matrix;
  ZmFrameType m_type = ZmFrameCartesian;
};

extern template class ZmFrameT<double>;
extern template class ZmFrameT<float>;

using ZmFramed = ZmFrameT<double>;
using ZmFramef = ZmFrameT<float>;
