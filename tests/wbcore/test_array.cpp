// WbArrayTempl (values) and WbObjectArrayTempl (owned heap objects).
#include <gtest/gtest.h>
#include <wbcore/WbArray.h>
#include <wbcore/WbCoord.h>

#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

template <class T>
std::vector<T> Items(const WbArrayTempl<T>& array) {
  return std::vector<T>(array.begin(), array.end());
}

TEST(WbArray, SetSizeValueInitialisesNewElements) {
  static_assert(std::is_same<decltype(WbArrayTempl<int>().GetSize()), std::uint64_t>::value, "");
  WbArrayTempl<double> values;
  values.SetSize(3);
  EXPECT_EQ(Items(values), (std::vector<double>{0.0, 0.0, 0.0}));
  values[0] = 7.5;
  values[2] = 9.0;
  values.SetSize(1);  // shrinking keeps the head
  values.SetSize(3);  // growing again gives fresh zeros, not the old tail
  EXPECT_EQ(Items(values), (std::vector<double>{7.5, 0.0, 0.0}));

  WbArrayTempl<WbCoord3Dd> points;
  points.SetSize(2);
  EXPECT_EQ(points[1].x, 0.0);
  EXPECT_EQ(points[1].z, 0.0);
}

TEST(WbArray, AddInsertAndRemoveKeepTheOrder) {
  WbArrayTempl<int> a;
  EXPECT_EQ(a.Add(10), 0u);
  EXPECT_EQ(a.Add(20), 1u);
  a.InsertAt(0, 5);    // before the first
  a.InsertAt(2, 15);   // in the middle
  a.InsertAt(4, 25);   // at the end
  a.InsertAt(99, 30);  // past the end: appended
  EXPECT_EQ(Items(a), (std::vector<int>{5, 10, 15, 20, 25, 30}));
  EXPECT_EQ(a.GetData()[3], 20);

  a.RemoveAt(1, 2);
  EXPECT_EQ(Items(a), (std::vector<int>{5, 20, 25, 30}));
  a.RemoveAt(2, 100);  // the part past the end is ignored
  EXPECT_EQ(Items(a), (std::vector<int>{5, 20}));
  a.RemoveAt(7);  // out of range: nothing
  a.RemoveAt(0, 0);
  EXPECT_EQ(Items(a), (std::vector<int>{5, 20}));
  a.RemoveAt(1, UINT64_MAX);  // a count that would overflow i + count
  EXPECT_EQ(Items(a), (std::vector<int>{5}));
  a.RemoveAt(0);
  EXPECT_EQ(a.GetSize(), 0u);
  EXPECT_EQ(a.IsEmpty(), 1);
  a.Add(1);
  a.RemoveAll();
  EXPECT_EQ(a.GetSize(), 0u);
}

TEST(WbArray, CopiesAreIndependentAndMovesTransferTheStorage) {
  WbArrayTempl<int> source{1, 2, 3};
  WbArrayTempl<int> copy(source);
  copy[0] = 100;
  EXPECT_EQ(source[0], 1);
  WbArrayTempl<int> assigned;
  assigned = source;
  source.Add(4);
  EXPECT_EQ(Items(assigned), (std::vector<int>{1, 2, 3}));

  const int* storage = source.GetData();
  WbArrayTempl<int> moved(std::move(source));
  EXPECT_EQ(moved.GetData(), storage);
  EXPECT_EQ(Items(moved), (std::vector<int>{1, 2, 3, 4}));
  assigned = std::move(moved);
  EXPECT_EQ(assigned.GetSize(), 4u);
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

TEST(WbObjectArray, OwnsItsObjects) {
  {
    WbObjectArrayTempl<Tracked> objects;
    Tracked* first = new Tracked(1);
    EXPECT_EQ(objects.Add(first), 0u);
    objects.Add(new Tracked(2));
    objects.Add(new Tracked(3));
    EXPECT_EQ(objects[0], first);
    EXPECT_EQ(Tracked::live, 3);

    objects.RemoveAt(1);  // deletes the object and closes the gap
    EXPECT_EQ(Tracked::live, 2);
    EXPECT_EQ(objects[1]->value, 3);

    Tracked* detached = objects.DetachAt(0);  // ownership back to the caller
    EXPECT_EQ(detached, first);
    EXPECT_EQ(objects.GetSize(), 1u);
    EXPECT_EQ(Tracked::live, 2);
    delete detached;

    objects.RemoveAll();
    EXPECT_EQ(Tracked::live, 0);
    objects.Add(new Tracked(4));
  }  // the destructor deletes what is left
  EXPECT_EQ(Tracked::live, 0);
}

TEST(WbObjectArray, CopyIsDeepAndMoveKeepsThePointers) {
  {
    WbObjectArrayTempl<Tracked> original;
    original.Add(new Tracked(1));
    original.Add(new Tracked(2));

    WbObjectArrayTempl<Tracked> copy(original);
    EXPECT_EQ(Tracked::live, 4);
    ASSERT_EQ(copy.GetSize(), 2u);
    EXPECT_NE(copy[0], original[0]);
    copy[1]->value = 20;
    EXPECT_EQ(original[1]->value, 2);

    WbObjectArrayTempl<Tracked> assigned;
    assigned.Add(new Tracked(9));
    assigned = copy;  // the previous object is deleted, the copies are new
    EXPECT_EQ(Tracked::live, 6);
    EXPECT_EQ(assigned[1]->value, 20);
    const WbObjectArrayTempl<Tracked>& self = assigned;
    assigned = self;
    EXPECT_EQ(Tracked::live, 6);
    EXPECT_EQ(assigned[0]->value, 1);

    Tracked* held = original[0];
    WbObjectArrayTempl<Tracked> moved(std::move(original));
    EXPECT_EQ(moved[0], held);
    EXPECT_EQ(Tracked::live, 6);
  }
  EXPECT_EQ(Tracked::live, 0);
}

}  // namespace
