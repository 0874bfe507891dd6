#include "ole/class_factory.h"

#include <atomic>
#include <new>

namespace av::ole {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  ClassFactory(CreateFunction create, ModuleLock& lock) noexcept
      : m_moduleReference(lock), m_lock(lock), m_create(create) {}
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  // [any thread]
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }

  // [any thread]
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }

  // [any thread]
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

  // [control thread] The object lives in the apartment of the thread that makes it.
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    // Only the non-delegating IUnknown may leave an aggregated object: any other interface would count on the outer one.
    if (outer != nullptr && iid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
    try {
      return m_create(outer, iid, object);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_UNEXPECTED;
    }
  }

  // [any thread]
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock) m_lock.lockModule();
    else m_lock.unlockModule();
    return S_OK;
  }

 private:
  ~ClassFactory() = default;

  ModuleReference m_moduleReference;
  ModuleLock& m_lock;
  CreateFunction m_create;
  std::atomic<ULONG> m_references{1};
};

}  // namespace

HRESULT makeClassFactory(CreateFunction create, ModuleLock& lock, REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  auto* factory = new (std::nothrow) ClassFactory(create, lock);
  if (factory == nullptr) return E_OUTOFMEMORY;
  const HRESULT result = factory->QueryInterface(iid, object);
  factory->Release();
  return result;
}

}  // namespace av::ole
