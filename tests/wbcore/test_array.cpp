// WbArrayTempl (values) and WbObjectArrayTempl (owned heap objects).
#include <gtest/gtest.h>
#include <wbcore/WbCoord.h>

#include <cstdint>
#include <type_traits>
#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

using Ints = std::vector<int>;

TEST(WbArray, SizingInsertionRemovalAndCopies) {
  static_assert(std::is_same<decltype(WbArrayTempl<int>().GetSize()), std::uint64_t>::value, "");
  WbArrayTempl<double> values{7.5, 8.0, 9.0};
  values.SetSize(1);  // shrinking keeps the head
  values.SetSize(3);  // growing again gives fresh zeros, not the old tail
  EXPECT_EQ(Items(values), (std::vector<double>{7.5, 0.0, 0.0}));
  WbArrayTempl<WbCoord3Dd> points;
  points.SetSize(2);
  EXPECT_TRUE(points[1].x == 0.0 && points[1].z == 0.0);

  WbArrayTempl<int> a;
  EXPECT_EQ(a.Add(10), 0u);
  EXPECT_EQ(a.Add(20), 1u);
  const std::pair<int, int> inserts[] = {{0, 5}, {2, 15}, {4, 25}, {99, 30}};
  for (const auto& i : inserts) a.InsertAt(i.first, i.second);
  EXPECT_EQ(Items(a), (Ints{5, 10, 15, 20, 25, 30}));  // 99 is past the end: appended
  // Removals: the part past the end is ignored, a start out of range removes nothing, and a
  // count that would overflow i + count stops at the end.
  const struct {
    std::uint64_t at, count;
    Ints after;
  } removals[] = {{1, 2, {5, 20, 25, 30}}, {2, 100, {5, 20}},    {7, 1, {5, 20}},
                  {0, 0, {5, 20}},         {1, UINT64_MAX, {5}}, {0, 1, {}}};
  for (const auto& r : removals) {
    a.RemoveAt(r.at, r.count);
    EXPECT_EQ(Items(a), r.after) << r.at << " " << r.count;
  }
  EXPECT_EQ(a.IsEmpty(), 1);

  WbArrayTempl<int> source{1, 2, 3}, copy(source);
  copy[0] = 100;
  const int* storage = source.GetData();
  WbArrayTempl<int> moved(std::move(source));
  EXPECT_EQ(moved.GetData(), storage);
  EXPECT_EQ(Items(moved), (Ints{1, 2, 3}));
}

// Counts live instances so that ownership mistakes show as a wrong count (and as a leak or a
// double free under AddressSanitizer).
struct Tracked {
  static int live;
  int value;
  explicit Tracked(int v) : value(v) { ++live; }
  Tracked(const Tracked& other) : value(other.value) { ++live; }
  Tracked& operator=(const Tracked&) = default;
  ~Tracked() { --live; }
};
int Tracked::live = 0;

TEST(WbObjectArray, OwnsItsObjectsAndCopiesThemDeeply) {
  {
    WbObjectArrayTempl<Tracked> objects;
    Tracked* first = new Tracked(1);
    EXPECT_EQ(objects.Add(first), 0u);
    objects.Add(new Tracked(2));
    objects.Add(new Tracked(3));
    objects.RemoveAt(1);  // deletes the object and closes the gap
    EXPECT_EQ(Tracked::live, 2);
    EXPECT_EQ(objects[1]->value, 3);
    Tracked* detached = objects.DetachAt(0);  // ownership back to the caller
    EXPECT_TRUE(detached == first && objects.GetSize() == 1u && Tracked::live == 2);
    delete detached;

    objects.Add(new Tracked(4));
    WbObjectArrayTempl<Tracked> copy(objects), assigned;
    EXPECT_EQ(Tracked::live, 4);
    EXPECT_NE(copy[0], objects[0]);
    copy[1]->value = 40;
    assigned.Add(new Tracked(9));
    assigned = copy;  // the previous object is deleted, the copies are new
    const WbObjectArrayTempl<Tracked>& self = assigned;
    assigned = self;
    EXPECT_EQ(Tracked::live, 6);
    EXPECT_TRUE(assigned[0]->value == 3 && assigned[1]->value == 40 && objects[1]->value == 4);

    Tracked* held = objects[0];
    WbObjectArrayTempl<Tracked> moved(std::move(objects));
    EXPECT_EQ(moved[0], held);
    copy.RemoveAll();
    EXPECT_EQ(Tracked::live, 4);
  }  // the destructors delete what is left
  EXPECT_EQ(Tracked::live, 0);
}

}  // namespace
