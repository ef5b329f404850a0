#include "geos/data/NgdSortedDataKdTree.h"

#include "basic/data/NbdDataPoints.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

TEST(NgdSortedDataKdTree, FindsTheNearestAndThoseWithin)
{
  for (int nDimensions = 1; nDimensions <= 3; ++nDimensions) {
    SCOPED_TRACE(nDimensions);
    // Integer coordinates and the frame of the world: distances are exact, many are equal.
    NbdDataPoints points;
    points.setNDimensions(nDimensions);
    points.ensureCoordinates();
    std::uint64_t counter = 0;
    const auto draw = [&](int axis) {
      return axis < nDimensions ? double(testsupport::uniformInt(5, counter++, 30)) : 0.;
    };
    for (int i = 0; i < 500; ++i)
      points.appendSample(NbgVector3D(draw(0), draw(1), draw(2)));
    NgdSortedDataKdTree tree;
    tree.setDimension(nDimensions);
    tree.build(points);
    testsupport::expectAssertion(QStringLiteral("data\\private\\NgdSortedDataKdTree"),
                                 QStringLiteral("Sorted Data is already built"),
                                 [&] { tree.build(points); });

    for (int query = 0; query < 100; ++query) {
      const NbgVector3D target(draw(0), draw(1), draw(2));
      std::vector<std::pair<double, int>> all;
      for (int rank = 0; rank < 500; ++rank)
        all.emplace_back((points.getLocation(rank) - target).squaredNorm(), rank);

      const double radius = query % 7;
      QVector<int> within;
      for (const auto &[squared, rank] : all) {
        if (squared <= radius * radius)
          within << rank;
      }
      QVector<int> ranks;
      tree.radiusSearch(target, radius, ranks);
      ASSERT_EQ(ranks, within);

      std::sort(all.begin(), all.end());
      const int count = query % 40 == 39 ? 600 : query % 40;
      QVector<double> distances;
      tree.knnSearch(target, count, ranks, distances);
      ASSERT_EQ(ranks.size(), std::min(count, 500));
      for (int i = 0; i < ranks.size(); ++i) {
        ASSERT_EQ(ranks[i], all[i].second) << i;
        ASSERT_EQ(distances[i], all[i].first);
      }
    }
  }
}
