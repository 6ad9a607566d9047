#include "wbcore/WbObject.h"

#include <cwchar>
#include <exception>


namespace {
// Head of the registry. A plain pointer is zero-initialised before any constructor runs,
// so records may register from any module's static initialisation in any order.
WbRuntimeClass* g_firstClass = nullptr;
}  // namespace

WbRuntimeClass::WbRuntimeClass(const wchar_t* className, const WbRuntimeClass* baseClass, CreateFn create)
    : m_className(className), m_baseClass(baseClass), m_create(create), m_next(g_firstClass) {
  g_firstClass = this;
}

WbRuntimeClass::~WbRuntimeClass() {
  for (WbRuntimeClass** link = &g_firstClass; *link; link = &(*link)->m_next) {
    if (*link == this) {
      *link = m_next;
      break;
    }
  }
}

unsigned char WbRuntimeClass::IsDerivedFrom(const WbRuntimeClass* cls) const {
  for (const WbRuntimeClass* c = this; c; c = c->m_baseClass) {
    if (c == cls) return 1;
  }
  return 0;
}

WbObject* WbRuntimeClass::CreateObject() const {
  WbObject* object = nullptr;
  try {
    object = m_create ? m_create() : nullptr;
    if (object) object->OnDynamicCreation();
  } catch (const std::exception&) {
    delete object;  // the creation hook failed for lack of memory: no half-made object
    object = nullptr;
  }
  return object;
}

const WbRuntimeClass* WbRuntimeClass::FromName(const wchar_t* className) {
  if (!className) return nullptr;
  for (const WbRuntimeClass* c = g_firstClass; c; c = c->m_next) {
    if (std::wcscmp(c->m_className, className) == 0) return c;
  }
  return nullptr;
}

WbObject* WbRuntimeClass::CreateObject(const wchar_t* className) {
  const WbRuntimeClass* cls = FromName(className);
  return cls ? cls->CreateObject() : nullptr;
}

WbRuntimeClass WbObject::WbClassWbObject(L"WbObject", nullptr, nullptr);

WbObject::~WbObject() = default;
const WbRuntimeClass* WbObject::GetRuntimeClass() const { return &WbClassWbObject; }
void WbObject::OnDynamicCreation() {}
unsigned char WbObject::OnDynamicDeletion() { return 1; }
WbString WbObject::ToString() const { return WbString(GetRuntimeClass()->GetClassName()); }
unsigned char WbObject::IsKindOf(const WbRuntimeClass* cls) const { return GetRuntimeClass()->IsDerivedFrom(cls); }

unsigned char WbObject::DeleteDynamicObject(WbObject* object) {
  if (!object) return 0;
  if (!object->OnDynamicDeletion()) return 0;
  delete object;
  return 1;
}
