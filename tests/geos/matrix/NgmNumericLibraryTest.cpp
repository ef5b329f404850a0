#include "geos/matrix/NgmNumericLibrary.h"

#include "MatrixTestSupport.h"

using namespace testsupport;

namespace {

/// In a new process: the mode is set before, and not after, the first numeric call.
[[noreturn]] void setModeAndExit(bool computeFirst)
{
  if (computeFirst)
    randomPositiveDefinite(1, 50);
  const bool done = NgmNumericLibrary::setReproducible();
  const bool again = NgmNumericLibrary::setReproducible();
  NgmNumericLibrary::freeThreadBuffers();
  std::exit(done && again ? 10 : 20);
}

}  // namespace

TEST(NgmNumericLibrary, TheReproducibleModeIsSetBeforeTheFirstCallOnly)
{
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(setModeAndExit(false), testing::ExitedWithCode(10), "");
  EXPECT_EXIT(setModeAndExit(true), testing::ExitedWithCode(20), "");
}
