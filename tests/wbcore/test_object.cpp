// Runtime-class records: registration, creation by name, kind tests and dynamic deletion.
#include <gtest/gtest.h>
#include <wbcore/WbObject.h>

#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

// A small hierarchy like the filters': an abstract base and two creatable classes.
class TestShape : public WbObject {
  WB_DECLARE_DYNAMIC(TestShape)
 public:
  static int live;
  TestShape() { ++live; }
  ~TestShape() override { --live; }
  virtual double Area() const = 0;
};
int TestShape::live = 0;

class TestCircle : public TestShape {
  WB_DECLARE_DYNAMIC(TestCircle)
 public:
  bool created = false;
  unsigned char deletable = 1;
  void OnDynamicCreation() override { created = true; }
  unsigned char OnDynamicDeletion() override { return deletable; }
  double Area() const override { return 3.0; }
};

class TestSquare : public TestShape {
  WB_DECLARE_DYNAMIC(TestSquare)
 public:
  double Area() const override { return 4.0; }
};

WB_IMPLEMENT_DYNAMIC(TestShape, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(TestCircle, TestShape, new TestCircle)
WB_IMPLEMENT_DYNAMIC(TestSquare, TestShape, new TestSquare)

// Names match exactly; a record leaves the list when it is destroyed (a module being unloaded).
TEST(WbRuntimeClass, RecordsAreRegisteredUnderTheirClassNames) {
  const WbRuntimeClass *circle = &TestCircle::WbClassTestCircle, *shape = &TestShape::WbClassTestShape;
  EXPECT_EQ(WbString(circle->GetClassName()), L"TestCircle");
  EXPECT_TRUE(circle->GetBaseClass() == shape && TestCircle::GetBaseRuntimeClass() == shape &&
              TestSquare::GetBaseRuntimeClass() == shape &&
              TestShape::GetBaseRuntimeClass() == &WbObject::WbClassWbObject &&
              WbObject::WbClassWbObject.GetBaseClass() == nullptr);
  {
    const WbRuntimeClass record(L"TestTransient", &WbObject::WbClassWbObject, nullptr);
    EXPECT_TRUE(WbRuntimeClass::FromName(L"TestTransient") == &record &&
                WbRuntimeClass::FromName(L"TestCircle") == circle);
  }
  const std::pair<const wchar_t*, const WbRuntimeClass*> rows[] = {{L"TestCircle", circle},
                                                                   {L"WbObject", &WbObject::WbClassWbObject},
                                                                   {L"TestSquare", &TestSquare::WbClassTestSquare},
                                                                   {L"testcircle", nullptr},
                                                                   {L"NoSuchFilter", nullptr},
                                                                   {nullptr, nullptr},
                                                                   {L"TestTransient", nullptr}};
  for (const auto& r : rows) EXPECT_EQ(WbRuntimeClass::FromName(r.first), r.second) << (r.first ? r.first : L"null");
}

// Creation by name or through the record calls the creation hook (a directly constructed object
// was not "created"); unknown and abstract classes give null.
TEST(WbRuntimeClass, CreationByNameKindTestsAndDeletion) {
  WbObject* object = WbRuntimeClass::CreateObject(L"TestCircle");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->GetRuntimeClass(), &TestCircle::WbClassTestCircle);
  EXPECT_TRUE(static_cast<TestCircle*>(object)->created);
  EXPECT_EQ(object->ToString(), L"TestCircle");
  EXPECT_EQ((std::vector<int>{
                object->IsKindOf(&TestCircle::WbClassTestCircle), object->IsKindOf(&TestShape::WbClassTestShape),
                object->IsKindOf(&WbObject::WbClassWbObject), object->IsKindOf(&TestSquare::WbClassTestSquare)}),
            (std::vector<int>{1, 1, 1, 0}));
  WbObject* square = TestSquare::WbClassTestSquare.CreateObject();
  ASSERT_NE(square, nullptr);
  EXPECT_EQ(static_cast<TestShape*>(square)->Area(), 4.0);
  EXPECT_FALSE(TestCircle().created);
  EXPECT_TRUE(WbRuntimeClass::CreateObject(L"TestShape") == nullptr &&
              WbRuntimeClass::CreateObject(L"WbObject") == nullptr &&
              WbRuntimeClass::CreateObject(L"ZmNoSuchClass") == nullptr);

  // Deletion asks the object first: refused, it stays alive.
  EXPECT_EQ(TestShape::live, 2);
  static_cast<TestCircle*>(object)->deletable = 0;
  EXPECT_EQ(WbObject::DeleteDynamicObject(object), 0);
  EXPECT_EQ(TestShape::live, 2);
  static_cast<TestCircle*>(object)->deletable = 1;
  EXPECT_EQ(WbObject::DeleteDynamicObject(object) + WbObject::DeleteDynamicObject(square), 2);
  EXPECT_EQ(TestShape::live, 0);
  EXPECT_EQ(WbObject::DeleteDynamicObject(nullptr), 0);
}

}  // namespace
