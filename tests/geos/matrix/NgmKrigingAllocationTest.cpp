#include "KrigingTestSupport.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"

// Counts what a piece of code takes from the C library, whoever asks. The sanitizers bring their
// own allocator.
#if !defined(__SANITIZE_ADDRESS__)

#include <cerrno>
#include <cstddef>

namespace {

thread_local long allocations = 0;

}  // namespace

extern "C" {

void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);
void *__libc_memalign(std::size_t, std::size_t);

void *malloc(std::size_t size)
{
  ++allocations;
  return __libc_malloc(size);
}

void *calloc(std::size_t n, std::size_t size)
{
  ++allocations;
  return __libc_calloc(n, size);
}

void *realloc(void *memory, std::size_t size)
{
  ++allocations;
  return __libc_realloc(memory, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
  ++allocations;
  return __libc_memalign(alignment, size);
}

int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
  ++allocations;
  *memory = __libc_memalign(alignment, size);
  return *memory ? 0 : ENOMEM;
}

}  // extern "C"

using namespace testsupport;

TEST(NgmKrigingSystem, AllocatesNothingOnceItHasBeenAsLarge)
{
  const NgmVModel model = meuseModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  Samples samples = randomSamples(301, 32);
  NgmKrigingSamples neighborhood = samples;
  samples.values(0)[2] = NbbGlobal::D_FFFF;
  NgmKrigingSystem system;
  NgmTarget target;
  QVector<double> out;
  const QVector<double> c00 = {0.64};
  const auto krige = [&](int n, double x) {
    neighborhood.n = n;
    target.setCenter(NbgVector3D(x, 500.));
    system.resetSystem(n, target.getCenter());
    system.buildSystem(model, neighborhood, target, cache.get());
    system.solve();
    system.krigingResults(neighborhood.values, out);
    system.computeVariance(c00, out);
    system.computeLagrange(out);
    system.getWeights(0, 0, out);
  };
  krige(32, 1.);

  const long before = allocations;
  for (int k = 0; k < 100; ++k)
    krige(1 + k % 32, 10. * k);
  EXPECT_EQ(allocations, before);
  EXPECT_GT(before, 0);
}

TEST(NgmKrigingSystemDualContext, AllocatesNothingOnceItHasBeenAsLarge)
{
  const NgmVModel model = meuseModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  Samples samples = randomSamples(311, 100);
  NgmKrigingSystemDual dual;
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext context(dual);
  const std::vector<double> x = uniformVector(321, 256, 0., 1000.);
  const std::vector<double> z(256, 0.);
  std::vector<double> results(256);
  NgmTarget target;
  QVector<double> out;
  const QVector<double> c00 = {0.64};
  const auto krige = [&](int n) {
    context.prepareBatch(n, x.data(), x.data(), z.data(), model, samples, cache.get());
    context.computeBatchEstimates(results.data());
    context.computeBatchWeights();
    context.computeBatchVariances(c00, results.data());
    context.setCurrentTarget(n - 1);
    context.getWeights(0, 0, out);
    target.setCenter(NbgVector3D(n, 500.));
    context.krigingResultsPoint(target, model, samples, out, cache.get());
    context.computeWeights();
    context.computeVariance(c00, out);
  };
  krige(256);

  const long before = allocations;
  for (int n : {256, 17, 1, 100, 255})
    krige(n);
  EXPECT_EQ(allocations, before);
}

#endif
