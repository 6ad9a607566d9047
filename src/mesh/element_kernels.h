#pragma once

// Shared pieces of the element metrics: a plain double vector, the element topologies (edges
// and faces of each type) and the signature of a metric kernel. Every kernel works in double
// on nodes already widened from the caller's precision.
#include <cmath>
#include <cstdint>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmMesh.h"

namespace zm {
namespace mesh {

struct V3 {
  double x, y, z;
};

inline V3 operator+(V3 a, V3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline V3 operator-(V3 a, V3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline V3 operator-(V3 a) { return {-a.x, -a.y, -a.z}; }
inline V3 operator*(double s, V3 a) { return {s * a.x, s * a.y, s * a.z}; }
inline double Dot(V3 a, V3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline V3 Cross(V3 a, V3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline double Length2(V3 a) { return Dot(a, a); }
inline double Length(V3 a) { return std::sqrt(Dot(a, a)); }
// a / |a|, or a unchanged when its length is 0; returns the length.
inline double Normalize(V3& a) {
  const double length = Length(a);
  if (length != 0.0) a = (1.0 / length) * a;
  return length;
}
inline double Triple(V3 a, V3 b, V3 c) { return Dot(a, Cross(b, c)); }

constexpr double kInvalid = static_cast<double>(zm::kInvalid);
// Below this a length, area or determinant is taken as zero (the limit Verdict uses).
constexpr double kTiny = 1.0e-30;
constexpr double kPi = 3.14159265358979323846;
constexpr double kRadToDeg = 180.0 / kPi;

// acos of a cosine clamped to [-1, 1], in degrees.
inline double AngleDegrees(double cosine) {
  if (!(cosine > -1.0)) cosine = -1.0;
  if (cosine > 1.0) cosine = 1.0;
  return std::acos(cosine) * kRadToDeg;
}

using MetricKernel = double (*)(const V3* p);

// Topology of each element type: its edges and faces (a face's nodes turn counter-clockwise
// seen from outside; a triangular face repeats no node and has count 3).
struct Face {
  int count;
  int n[4];
};
struct Topology {
  int nodes;
  int edgeCount;
  int edges[12][2];
  int faceCount;
  Face faces[6];
};
const Topology& TopologyOf(ZmElementType type);

// The kernel of (type, metric), null when the metric is not defined for the type.
MetricKernel KernelOf(ZmElementType type, ZmElementMetric metric);

// Per-type kernel tables, defined in the source of each family.
struct KernelEntry {
  ZmElementMetric metric;
  MetricKernel kernel;
};
struct KernelList {
  const KernelEntry* entries;
  int count;
};
KernelList TriKernels();
KernelList QuadKernels();
KernelList TetKernels();
KernelList HexKernels();
KernelList WedgeKernels();
KernelList PyramidKernels();

// Shared geometry.
double TriArea(const V3* p);
double QuadArea(const V3* p);       // 0.5 |(p2 - p0) x (p3 - p1)|
double FaceArea(const V3* p, const Face& face);
double SolidVolume(const V3* p, const Topology& topology);
// |V| over the largest face area.
double SolidCharacteristicLength(const V3* p, const Topology& topology);
double EdgeRatio(const V3* p, const Topology& topology);
// The metrics every solid shares, for the element type Type.
template <ZmElementType Type>
double VolumeOf(const V3* p) {
  return SolidVolume(p, TopologyOf(Type));
}
template <ZmElementType Type>
double EdgeRatioOf(const V3* p) {
  return EdgeRatio(p, TopologyOf(Type));
}
template <ZmElementType Type>
double CharacteristicLengthOf(const V3* p) {
  return SolidCharacteristicLength(p, TopologyOf(Type));
}
// Smallest and largest corner angles of a quad in degrees (Verdict's rules), false when an
// edge has zero length.
bool QuadMinMaxAngle(const V3* p, double& minAngle, double& maxAngle);
bool TriMinMaxAngle(const V3* p, double& minAngle, double& maxAngle);
// Verdict's quad shape and tet scaled Jacobian, which the pyramid metrics are built from.
double QuadShape(const V3* p);
double TetScaledJacobian(const V3* p);
// Equiangle skew of one face: a triangle's angles against 60 degrees, a quad's against 90.
double FaceEquiangleSkew(const V3* p, const Face& face);
// Closest point of the triangle a b c to q; wb and wc receive the weights of b and c.
V3 ClosestPointOnTriangle(V3 q, V3 a, V3 b, V3 c, double& wb, double& wc);

// Widens the n nodes of the caller's precision; false when a coordinate is not finite.
template <class T>
bool LoadNodes(const ZmPoint3T<T>* nodes, int n, V3* out) {
  for (int i = 0; i < n; ++i) {
    out[i] = {double(nodes[i].x), double(nodes[i].y), double(nodes[i].z)};
    if (!std::isfinite(out[i].x + out[i].y + out[i].z)) return false;
  }
  return true;
}
// The same through a connectivity list; false also for an index out of range.
template <class T>
bool GatherNodes(const ZmPoint3T<T>* nodes, std::uint64_t nodeCount, const std::int64_t* ids, int n, V3* out) {
  for (int i = 0; i < n; ++i) {
    if (ids[i] < 0 || static_cast<std::uint64_t>(ids[i]) >= nodeCount) return false;
    const ZmPoint3T<T>& q = nodes[ids[i]];
    out[i] = {double(q.x), double(q.y), double(q.z)};
    if (!std::isfinite(out[i].x + out[i].y + out[i].z)) return false;
  }
  return true;
}
template <class T>
ZmPoint3T<T> ToPoint(V3 v) {
  return ZmPoint3T<T>(T(v.x), T(v.y), T(v.z));
}
inline bool IsKnownType(ZmElementType type) { return type >= 0 && type < ZmElementTypeCount; }

}  // namespace mesh
}  // namespace zm
