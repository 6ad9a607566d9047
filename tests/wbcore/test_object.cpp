// Runtime-class records: registration, creation by name, kind tests and dynamic deletion.
#include <wbcore/WbObject.h>

#include <utility>

#include "wbcore/wb_test_support.h"

namespace {

// A small hierarchy like the filters': a base that cannot be created and two classes that can.
class TestShape : public WbObject {
  WB_DECLARE_DYNAMIC(TestShape)
 public:
  static int live;
  TestShape() { ++live; }
  ~TestShape() override { --live; }
};
int TestShape::live = 0;

class TestCircle : public TestShape {
  WB_DECLARE_DYNAMIC(TestCircle)
 public:
  bool created = false;
  unsigned char deletable = 1;
  void OnDynamicCreation() override { created = true; }
  unsigned char OnDynamicDeletion() override { return deletable; }
};

class TestSquare : public TestShape {
  WB_DECLARE_DYNAMIC(TestSquare)
};

WB_IMPLEMENT_DYNAMIC(TestShape, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(TestCircle, TestShape, new TestCircle)
WB_IMPLEMENT_DYNAMIC(TestSquare, TestShape, new TestSquare)

// Names match exactly; a record leaves the list when it is destroyed (a module being unloaded).
TEST(WbRuntimeClass, RecordsAreRegisteredUnderTheirClassNames) {
  const WbRuntimeClass *circle = &TestCircle::WbClassTestCircle, *shape = &TestShape::WbClassTestShape;
  const WbRuntimeClass *object = &WbObject::WbClassWbObject, *square = &TestSquare::WbClassTestSquare;
  EXPECT_EQ(WbString(circle->GetClassName()), L"TestCircle");
  EXPECT_TRUE(circle->GetBaseClass() == shape && TestCircle::GetBaseRuntimeClass() == shape &&
              TestSquare::GetBaseRuntimeClass() == shape && TestShape::GetBaseRuntimeClass() == object &&
              object->GetBaseClass() == nullptr);
  {
    const WbRuntimeClass record(L"TestTransient", object, nullptr);
    EXPECT_TRUE(WbRuntimeClass::FromName(L"TestTransient") == &record &&
                WbRuntimeClass::FromName(L"TestCircle") == circle);
  }
  const std::pair<const wchar_t*, const WbRuntimeClass*> rows[] = {
      {L"TestCircle", circle},    {L"WbObject", object}, {L"TestSquare", square},    {L"testcircle", nullptr},
      {L"NoSuchFilter", nullptr}, {nullptr, nullptr},    {L"TestTransient", nullptr}};
  for (const auto& r : rows) EXPECT_EQ(WbRuntimeClass::FromName(r.first), r.second) << (r.first ? r.first : L"null");
}

// Creation by name or through the record calls the creation hook (a directly constructed object
// was not "created"); unknown and abstract classes give null. Deletion asks the object first.
TEST(WbRuntimeClass, CreationKindTestsAndDeletion) {
  auto* circle = static_cast<TestCircle*>(WbRuntimeClass::CreateObject(L"TestCircle"));
  WbObject* square = TestSquare::WbClassTestSquare.CreateObject();
  ASSERT_TRUE(circle && square);
  EXPECT_TRUE(circle->created && !TestCircle().created && square->GetRuntimeClass() == &TestSquare::WbClassTestSquare);
  EXPECT_TRUE(circle->GetRuntimeClass() == &TestCircle::WbClassTestCircle && circle->ToString() == L"TestCircle");
  EXPECT_EQ((std::vector<int>{
                circle->IsKindOf(&TestCircle::WbClassTestCircle), circle->IsKindOf(&TestShape::WbClassTestShape),
                circle->IsKindOf(&WbObject::WbClassWbObject), circle->IsKindOf(&TestSquare::WbClassTestSquare)}),
            (std::vector<int>{1, 1, 1, 0}));
  for (const wchar_t* none : {L"TestShape", L"WbObject", L"ZmNoSuchClass"})
    EXPECT_EQ(WbRuntimeClass::CreateObject(none), nullptr);

  circle->deletable = 0;  // refused: still alive
  EXPECT_EQ(WbObject::DeleteDynamicObject(circle), 0);
  EXPECT_EQ(TestShape::live, 2);
  circle->deletable = 1;
  EXPECT_EQ(WbObject::DeleteDynamicObject(circle) + WbObject::DeleteDynamicObject(square), 2);
  EXPECT_EQ(TestShape::live, 0);
  EXPECT_EQ(WbObject::DeleteDynamicObject(nullptr), 0);
}

}  // namespace
