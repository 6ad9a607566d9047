#pragma once

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

class WbObject;

// The runtime record of a class: its name, the record of its base class and a function
// that creates an instance. Records register themselves in a process-wide list when they
// are constructed (at load of the module that holds them) and leave it when destroyed, so
// an object can be created from its class name.
class WBCORE_API WbRuntimeClass {
public:
  typedef WbObject* (*CreateFn)();

  WbRuntimeClass(const wchar_t* className, const WbRuntimeClass* baseClass, CreateFn create);
  ~WbRuntimeClass();
  WbRuntimeClass(const WbRuntimeClass&) = delete;
  WbRuntimeClass& operator=(const WbRuntimeClass&) = delete;

  const wchar_t* GetClassName() const { return m_className; }
  const WbRuntimeClass* GetBaseClass() const { return m_baseClass; }
  // 1 when this record is cls or derives from it.
  unsigned char IsDerivedFrom(const WbRuntimeClass* cls) const;
  // A new object of this class (calling its OnDynamicCreation), or null for an abstract class
  // and when memory runs out (in the constructor or the creation hook; nothing is left behind).
  WbObject* CreateObject() const;

  // The registered record with this exact name, or null.
  static const WbRuntimeClass* FromName(const wchar_t* className);
  // Creates an object from its class name; null when the name is unknown or abstract, or when
  // memory runs out.
  static WbObject* CreateObject(const wchar_t* className);

private:
  const wchar_t* m_className;
  const WbRuntimeClass* m_baseClass;
  CreateFn m_create;
  WbRuntimeClass* m_next = nullptr;
};

// Root of the classes that take part in the runtime-class scheme.
class WBCORE_API WbObject {
public:
  static WbRuntimeClass WbClassWbObject;

  virtual ~WbObject();
  virtual const WbRuntimeClass* GetRuntimeClass() const;
  // Hooks around creation and deletion by class name. OnDynamicDeletion returns 1 when the
  // object may be deleted.
  virtual void OnDynamicCreation();
  virtual unsigned char OnDynamicDeletion();
  virtual WbString ToString() const;
  unsigned char IsKindOf(const WbRuntimeClass* cls) const;
  // Deletes an object made by name after asking OnDynamicDeletion; returns that answer.
  static unsigned char DeleteDynamicObject(WbObject* object);
};

// Declares the runtime record WbClass<name> and the members of the scheme in a class body.
#define WB_DECLARE_DYNAMIC(className)                             \
public:                                                           \
  static WbRuntimeClass WbClass##className;                       \
  static const WbRuntimeClass* GetBaseRuntimeClass();             \
  const WbRuntimeClass* GetRuntimeClass() const override;         \
  static WbObject* WbCreate##className();

// Defines them in one source file; creatable classes pass `new className` as the factory
// expression, abstract ones `nullptr`.
#define WB_IMPLEMENT_DYNAMIC(className, baseClassName, factory)                                  \
  WbObject* className::WbCreate##className() { return factory; }                                 \
  WbRuntimeClass className::WbClass##className(L## #className, &baseClassName::WbClass##baseClassName, \
                                               &className::WbCreate##className);                 \
  const WbRuntimeClass* className::GetBaseRuntimeClass() {                                        \
    return &baseClassName::WbClass##baseClassName;                                                \
  }                                                                                              \
  const WbRuntimeClass* className::GetRuntimeClass() const { return &WbClass##className; }
