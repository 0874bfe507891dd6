#pragma once

#include "ole/module_lock.h"

#include <unknwn.h>

#include <atomic>
#include <exception>
#include <new>

namespace av::ole {

/// The identity of a COM object: reference count, interface lookup and aggregation, apart from the interfaces
/// themselves. Interfaces are parts of the object (see Delegating) that forward their IUnknown here.
///
/// Dying: the last Release pins the count, runs tearDown() while the object is still whole, then deletes it. AddRef and
/// Release pairs made meanwhile (marshalling, dispatched messages, container calls) cannot destroy it twice.
class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// The IUnknown of the whole object: the outer one of an aggregate, else the own.
  IUnknown* controllingUnknown() const noexcept { return m_outer; }
  /// The own IUnknown, which an aggregating object holds.
  IUnknown* innerUnknown() noexcept { return &m_inner; }

  // [any thread] What every part's IUnknown does.
  HRESULT queryInterface(REFIID iid, void** object) { return m_outer->QueryInterface(iid, object); }
  ULONG addRef() { return m_outer->AddRef(); }
  ULONG release() { return m_outer->Release(); }

 protected:
  /// `outer`: the aggregating object's IUnknown, or null. The object starts with one reference.
  explicit Object(IUnknown* outer) noexcept;
  virtual ~Object();

  /// The part that implements `iid`, not yet counted; null if there is none. IUnknown never arrives here.
  virtual void* findInterface(REFIID iid) noexcept = 0;
  /// Runs on the last Release with the count pinned; may dispatch messages and call out.
  virtual void tearDown() noexcept {}

 private:
  class Inner final : public IUnknown {
   public:
    explicit Inner(Object& object) noexcept : m_object(object) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

   private:
    Object& m_object;
  };

  ModuleReference m_module;  // first, so that it is given back last
  Inner m_inner{*this};
  IUnknown* m_outer;
  std::atomic<ULONG> m_references{1};
};

/// Makes a `Class` (derived from Object, constructed from the outer IUnknown) and answers with the asked interface.
/// E_OUTOFMEMORY where construction fails, E_NOINTERFACE for an interface that the class lacks.
template <class Class>
HRESULT createObject(IUnknown* outer, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  try {
    IUnknown* made = (new Class(outer))->innerUnknown();
    const HRESULT result = made->QueryInterface(iid, object);
    made->Release();
    return result;
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
}

/// Holds the object for as long as a method runs that could lose the last reference half-way: hosts release controls
/// inside activation verbs, events and ticks.
class KeepAlive {
 public:
  explicit KeepAlive(Object& object) : m_object(object) { m_object.addRef(); }
  ~KeepAlive() { m_object.release(); }
  KeepAlive(const KeepAlive&) = delete;
  KeepAlive& operator=(const KeepAlive&) = delete;

 private:
  Object& m_object;
};

/// An interface as a part of an Object: IUnknown goes to the object, the rest is the derived class's.
template <class Interface>
class Delegating : public Interface {
 public:
  explicit Delegating(Object& object) noexcept : m_object(object) {}
  Delegating(const Delegating&) = delete;
  Delegating& operator=(const Delegating&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) final { return m_object.queryInterface(iid, object); }
  STDMETHODIMP_(ULONG) AddRef() final { return m_object.addRef(); }
  STDMETHODIMP_(ULONG) Release() final { return m_object.release(); }

 protected:
  ~Delegating() = default;

 private:
  Object& m_object;
};

}  // namespace av::ole
