#include "ole/activation_context.h"

#include <gtest/gtest.h>

namespace av::ole {
namespace {

HANDLE currentContext() {
  HANDLE context = nullptr;
  EXPECT_TRUE(GetCurrentActCtx(&context));
  if (context != nullptr) ReleaseActCtx(context);
  return context;
}

TEST(OwnActivationContext, LeavesTheThreadAsItIsWhenTheModuleCarriesNoManifest) {
  const HANDLE before = currentContext();
  {
    const OwnActivationContext own;
    EXPECT_FALSE(own.active());
    EXPECT_EQ(before, currentContext());
  }
  EXPECT_EQ(before, currentContext());
}

}  // namespace
}  // namespace av::ole
