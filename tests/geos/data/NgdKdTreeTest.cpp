#include "data/private/NgdKdTree.h"

#include "data/private/NgdNearestSet.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr int nDim = 2;

/// Random points; every third one stands where others do, and a few stand nowhere.
std::vector<double> cloud(int n)
{
  std::vector<double> coordinates;
  for (int i = 0; i < n; ++i)
    for (int axis = 0; axis < nDim; ++axis)
      coordinates.push_back(i % 3 == 1 ? 50. : testsupport::uniform(21, 2 * i + axis, 0., 100.));
  for (int i = 7; i < n; i += 100)
    coordinates[std::size_t(i) * nDim] = i % 200 == 7 ? std::nan("") : INFINITY;
  return coordinates;
}

double squaredDistance(const std::vector<double> &coordinates, int i, const double *point)
{
  double sum = 0.;
  for (int axis = 0; axis < nDim; ++axis)
    sum += std::pow(coordinates[std::size_t(i * nDim + axis)] - point[axis], 2);
  return sum;
}

}  // namespace

TEST(NgdKdTree, NearestSetHoldsAllThatTieAndFewMore)
{
  for (const int n : {0, 1, 15, 16, 17, 33, 400}) {
    const std::vector<double> coordinates = cloud(n);
    const NgdKdTree<nDim> tree(coordinates);
    ASSERT_EQ(tree.count(), n);
    EXPECT_LE(tree.boxVolume(), 100. * 100.);
    std::vector<unsigned char> usable;
    for (int i = 0; i < n; ++i)
      usable.push_back(i % 4 != 0);
    std::vector<double> memory;
    for (int query = 0; query < 200; ++query) {
      SCOPED_TRACE(testing::Message() << n << " points, query " << query);
      const double point[] = {testsupport::uniform(22, 2 * query, -50., 150.),
                              query % 5 ? 50. : testsupport::uniform(22, 2 * query + 1)};
      std::vector<double> all;
      for (int i = 0; i < n; ++i) {
        const double squared = squaredDistance(coordinates, i, point);
        if (usable[std::size_t(i)] && squared <= 5000.)
          all.push_back(squared);
      }
      std::sort(all.begin(), all.end());

      const int wanted = 1 + query % 70;
      const NgdWidening widening(1e-13);
      NgdNearestSet set(wanted, 5000., usable.data(), tree.order(), widening, memory);
      tree.search(point, set);
      std::set<unsigned> found;
      std::vector<double> distances;
      for (int i = 0; i < set.count(); ++i) {
        ASSERT_TRUE(usable[tree.order()[set.position(i)]]);
        found.insert(set.position(i));
        distances.push_back(tree.squaredDistance(point, set.position(i)));
      }
      EXPECT_EQ(int(found.size()), set.count());
      std::sort(distances.begin(), distances.end());
      // All up to the last one that is wanted, and none that is farther by more than 2^-18.
      const double last = int(all.size()) > wanted ? all[std::size_t(wanted - 1)] : 5000.;
      const auto end = std::upper_bound(all.begin(), all.end(), last);
      ASSERT_GE(distances.size(), std::size_t(end - all.begin()));
      EXPECT_TRUE(std::equal(all.begin(), end, distances.begin()));
      EXPECT_TRUE(distances.empty() || distances.back() <= last * (1. + 0x1p-18));
    }
  }
}

TEST(NgdKdTree, ZeroDistancesTie)
{
  const NgdKdTree<nDim> tree(std::vector<double>(nDim * 100, 0.));
  const double point[] = {0., 0.};
  std::vector<double> memory;
  const NgdWidening widening(0.);
  NgdNearestSet set(3, 0., nullptr, tree.order(), widening, memory);
  tree.search(point, set);
  EXPECT_EQ(set.count(), 100);
  EXPECT_EQ(tree.boxVolume(), 0.);
}
