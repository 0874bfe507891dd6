#include "ole/class_factory.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <new>

#include "support/own_module.h"

namespace av::ole {
namespace {

using Microsoft::WRL::ComPtr;

struct CountingLock final : ModuleLock {
  void lockModule() noexcept override { ++count; }
  void unlockModule() noexcept override { --count; }
  int count = 0;
};

/// What the last creator call was asked for.
struct Request {
  int calls = 0;
  IUnknown* outer = nullptr;
  IID iid{};
};
Request lastRequest;

/// Answers with a free-threaded marshaller: an object of the system's that can be aggregated.
HRESULT createMarshaller(IUnknown* outer, REFIID iid, void** object) {
  lastRequest = {lastRequest.calls + 1, outer, iid};
  ComPtr<IUnknown> made;
  const HRESULT result = CoCreateFreeThreadedMarshaler(outer, &made);
  if (FAILED(result)) return result;
  return made.CopyTo(iid, object);
}

HRESULT throwBadAlloc(IUnknown*, REFIID, void**) { throw std::bad_alloc(); }

class ClassFactoryTest : public testing::Test {
 protected:
  ClassFactoryTest() { lastRequest = {}; }

  ComPtr<IClassFactory> factoryOf(CreateFunction create) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, makeClassFactory(create, lock, IID_PPV_ARGS(&factory)));
    return factory;
  }

  CountingLock lock;
};

TEST_F(ClassFactoryTest, AnswersIUnknownAndIClassFactoryOnly) {
  ComPtr<IUnknown> unknown;
  EXPECT_EQ(S_OK, makeClassFactory(&createMarshaller, lock, IID_PPV_ARGS(&unknown)));
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(S_OK, unknown.As(&factory));
  void* other = &lock;
  EXPECT_EQ(E_NOINTERFACE, makeClassFactory(&createMarshaller, lock, IID_IDispatch, &other));
  EXPECT_EQ(nullptr, other);
  EXPECT_EQ(E_POINTER, makeClassFactory(&createMarshaller, lock, IID_IUnknown, nullptr));
  EXPECT_EQ(E_POINTER, factory->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(ClassFactoryTest, HoldsTheModuleWhileItLives) {
  EXPECT_EQ(0, lock.count);
  {
    const ComPtr<IClassFactory> factory = factoryOf(&createMarshaller);
    EXPECT_EQ(1, lock.count);
    ComPtr<IClassFactory> second = factory;
    EXPECT_EQ(1, lock.count);
  }
  EXPECT_EQ(0, lock.count);
  void* none = nullptr;
  EXPECT_EQ(E_NOINTERFACE, makeClassFactory(&createMarshaller, lock, IID_IDispatch, &none));
  EXPECT_EQ(0, lock.count) << "a refused factory gives its count back";
}

TEST_F(ClassFactoryTest, LockServerCountsBeyondTheFactorysLife) {
  ComPtr<IClassFactory> factory = factoryOf(&createMarshaller);
  EXPECT_EQ(S_OK, factory->LockServer(TRUE));
  factory.Reset();
  EXPECT_EQ(1, lock.count);
  factory = factoryOf(&createMarshaller);
  EXPECT_EQ(S_OK, factory->LockServer(FALSE));
  factory.Reset();
  EXPECT_EQ(0, lock.count);
}

TEST_F(ClassFactoryTest, PassesTheRequestToTheCreator) {
  const ComPtr<IClassFactory> factory = factoryOf(&createMarshaller);
  ComPtr<IMarshal> object;
  EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_PPV_ARGS(&object)));
  EXPECT_NE(nullptr, object);
  EXPECT_EQ(1, lastRequest.calls);
  EXPECT_EQ(nullptr, lastRequest.outer);
  EXPECT_EQ(IID_IMarshal, lastRequest.iid);
}

TEST_F(ClassFactoryTest, AggregatesOnlyThroughIUnknown) {
  const ComPtr<IClassFactory> factory = factoryOf(&createMarshaller);
  IUnknown* outer = factory.Get();
  void* object = &lock;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(outer, IID_IMarshal, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(0, lastRequest.calls);

  ComPtr<IUnknown> inner;
  EXPECT_EQ(S_OK, factory->CreateInstance(outer, IID_PPV_ARGS(&inner)));
  EXPECT_EQ(outer, lastRequest.outer);
}

TEST_F(ClassFactoryTest, RefusesANullResultPointer) {
  const ComPtr<IClassFactory> factory = factoryOf(&createMarshaller);
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
  EXPECT_EQ(0, lastRequest.calls);
}

TEST_F(ClassFactoryTest, TurnsMissingMemoryIntoAResult) {
  const ComPtr<IClassFactory> factory = factoryOf(&throwBadAlloc);
  void* object = &lock;
  EXPECT_EQ(E_OUTOFMEMORY, factory->CreateInstance(nullptr, IID_IUnknown, &object));
  EXPECT_EQ(nullptr, object);
}

TEST(ModuleReference, CountsOnTheModuleOfTheBinaryByDefault) {
  const long before = test::ownModuleLockCount();
  {
    const ModuleReference reference;
    EXPECT_EQ(before + 1, test::ownModuleLockCount());
  }
  EXPECT_EQ(before, test::ownModuleLockCount());
}

}  // namespace
}  // namespace av::ole
