#pragma once

namespace av::test {

/// How many things hold the test program's own module lock at this moment.
long ownModuleLockCount();

}  // namespace av::test
