// Runtime-class records: registration, creation by name, kind tests and dynamic deletion.
#include <gtest/gtest.h>
#include <wbcore/WbObject.h>

#include "wbcore/wb_print.h"

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

TEST(WbRuntimeClass, RecordsAreRegisteredUnderTheirClassNames) {
  EXPECT_EQ(WbRuntimeClass::FromName(L"TestCircle"), &TestCircle::WbClassTestCircle);
  EXPECT_EQ(WbRuntimeClass::FromName(L"WbObject"), &WbObject::WbClassWbObject);
  EXPECT_EQ(WbString(TestCircle::WbClassTestCircle.GetClassName()), L"TestCircle");
  EXPECT_EQ(TestCircle::WbClassTestCircle.GetBaseClass(), &TestShape::WbClassTestShape);
  EXPECT_EQ(TestCircle::GetBaseRuntimeClass(), &TestShape::WbClassTestShape);
  EXPECT_EQ(TestSquare::GetBaseRuntimeClass(), &TestShape::WbClassTestShape);
  EXPECT_EQ(TestShape::GetBaseRuntimeClass(), &WbObject::WbClassWbObject);
  EXPECT_EQ(WbObject::WbClassWbObject.GetBaseClass(), nullptr);
  // Names match exactly.
  EXPECT_EQ(WbRuntimeClass::FromName(L"testcircle"), nullptr);
  EXPECT_EQ(WbRuntimeClass::FromName(L"NoSuchFilter"), nullptr);
  EXPECT_EQ(WbRuntimeClass::FromName(nullptr), nullptr);

  // A record leaves the list when it is destroyed (a module being unloaded).
  {
    WbRuntimeClass transient(L"TestTransient", &WbObject::WbClassWbObject, nullptr);
    EXPECT_EQ(WbRuntimeClass::FromName(L"TestTransient"), &transient);
    EXPECT_EQ(WbRuntimeClass::FromName(L"TestCircle"), &TestCircle::WbClassTestCircle);
  }
  EXPECT_EQ(WbRuntimeClass::FromName(L"TestTransient"), nullptr);
  EXPECT_EQ(WbRuntimeClass::FromName(L"TestSquare"), &TestSquare::WbClassTestSquare);
}

TEST(WbRuntimeClass, CreationByNameCallsTheCreationHook) {
  WbObject* object = WbRuntimeClass::CreateObject(L"TestCircle");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->GetRuntimeClass(), &TestCircle::WbClassTestCircle);
  EXPECT_TRUE(static_cast<TestCircle*>(object)->created);
  EXPECT_EQ(object->ToString(), L"TestCircle");
  EXPECT_EQ(object->IsKindOf(&TestCircle::WbClassTestCircle), 1);
  EXPECT_EQ(object->IsKindOf(&TestShape::WbClassTestShape), 1);
  EXPECT_EQ(object->IsKindOf(&WbObject::WbClassWbObject), 1);
  EXPECT_EQ(object->IsKindOf(&TestSquare::WbClassTestSquare), 0);
  EXPECT_EQ(WbObject::DeleteDynamicObject(object), 1);

  // Through the record as well; a directly constructed object was not "created".
  WbObject* square = TestSquare::WbClassTestSquare.CreateObject();
  ASSERT_NE(square, nullptr);
  EXPECT_EQ(static_cast<TestShape*>(square)->Area(), 4.0);
  EXPECT_EQ(WbObject::DeleteDynamicObject(square), 1);
  TestCircle direct;
  EXPECT_FALSE(direct.created);

  // Unknown and abstract classes give null.
  EXPECT_EQ(WbRuntimeClass::CreateObject(L"TestShape"), nullptr);
  EXPECT_EQ(WbRuntimeClass::CreateObject(L"WbObject"), nullptr);
  EXPECT_EQ(WbRuntimeClass::CreateObject(L"ZmNoSuchClass"), nullptr);
}

TEST(WbRuntimeClass, DynamicDeletionAsksTheObjectFirst) {
  ASSERT_EQ(TestShape::live, 0);
  auto* circle = static_cast<TestCircle*>(WbRuntimeClass::CreateObject(L"TestCircle"));
  ASSERT_NE(circle, nullptr);
  circle->deletable = 0;
  EXPECT_EQ(WbObject::DeleteDynamicObject(circle), 0);
  EXPECT_EQ(TestShape::live, 1);  // refused: still alive
  circle->deletable = 1;
  EXPECT_EQ(WbObject::DeleteDynamicObject(circle), 1);
  EXPECT_EQ(TestShape::live, 0);
  EXPECT_EQ(WbObject::DeleteDynamicObject(nullptr), 0);
}

}  // namespace
