// WbArrayTempl (values) and WbObjectArrayTempl (owned heap objects).
#include <cstdint>
#include <type_traits>
#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

using Ints = std::vector<int>;

// Growing gives fresh zeros, not the old tail; an insertion past the end appends; a removal
// ignores the part past the end, removes nothing from a start out of range, and stops at the end
// when i + count would overflow.
TEST(WbArray, SizingInsertionAndRemoval) {
  static_assert(std::is_same<decltype(WbArrayTempl<int>().GetSize()), std::uint64_t>::value, "");
  WbArrayTempl<double> values{7.5, 8.0, 9.0};
  values.SetSize(1);
  values.SetSize(3);
  EXPECT_EQ(Items(values), (std::vector<double>{7.5, 0.0, 0.0}));
  WbArrayTempl<int> a{10};
  EXPECT_EQ(a.Add(20), 1u);
  const std::pair<int, int> inserts[] = {{0, 5}, {2, 15}, {4, 25}, {99, 30}};
  for (const auto& i : inserts) a.InsertAt(i.first, i.second);
  EXPECT_EQ(Items(a), (Ints{5, 10, 15, 20, 25, 30}));
  const struct {
    std::uint64_t at, count;
    Ints after;
  } removals[] = {{1, 2, {5, 20, 25, 30}}, {2, 100, {5, 20}},    {7, 1, {5, 20}},
                  {0, 0, {5, 20}},         {1, UINT64_MAX, {5}}, {0, 1, {}}};
  for (const auto& r : removals) {
    a.RemoveAt(r.at, r.count);
    EXPECT_EQ(Items(a), r.after) << r.at << " " << r.count;
  }
}

// Counts live instances so that ownership mistakes show as a wrong count (and as a leak or a
// double free under AddressSanitizer).
struct Tracked {
  static int live;
  int value;
  explicit Tracked(int v) : value(v) { ++live; }
  Tracked(const Tracked& other) : value(other.value) { ++live; }
  ~Tracked() { --live; }
};
int Tracked::live = 0;

// Removal deletes the object and closes the gap, detaching hands it back to the caller; copies
// are deep (an assignment deletes what it replaces, a self-assignment changes nothing), moves
// keep the pointers, and the destructor deletes what is left.
TEST(WbObjectArray, OwnsItsObjectsAndCopiesThemDeeply) {
  {
    WbObjectArrayTempl<Tracked> objects;
    Tracked* first = new Tracked(1);
    EXPECT_EQ(objects.Add(first), 0u);
    objects.Add(new Tracked(2));
    objects.Add(new Tracked(3));
    objects.RemoveAt(1);
    Tracked* detached = objects.DetachAt(0);
    EXPECT_TRUE(detached == first && objects.GetSize() == 1u && objects[0]->value == 3 && Tracked::live == 2);
    delete detached;

    objects.Add(new Tracked(4));
    WbObjectArrayTempl<Tracked> copy(objects), assigned;
    EXPECT_TRUE(Tracked::live == 4 && copy[0] != objects[0]);
    copy[1]->value = 40;
    assigned.Add(new Tracked(9));
    assigned = copy;
    const WbObjectArrayTempl<Tracked>& self = assigned;
    assigned = self;
    EXPECT_EQ(Tracked::live, 6);
    EXPECT_TRUE(assigned[0]->value == 3 && assigned[1]->value == 40 && objects[1]->value == 4);

    Tracked* held = objects[0];
    const WbObjectArrayTempl<Tracked> moved(std::move(objects));
    copy.RemoveAll();
    EXPECT_TRUE(moved[0] == held && Tracked::live == 4);
  }
  EXPECT_EQ(Tracked::live, 0);
}

}  // namespace
