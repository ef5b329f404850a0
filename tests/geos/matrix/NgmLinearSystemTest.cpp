#include "geos/matrix/NgmLinearSystem.h"

#include "MatrixTestSupport.h"

using namespace testsupport;

namespace {

void fill(NgmLinearSystem &system, const NgmMatrix &lhs, const NgmMatrix &rhs)
{
  system.getLHS().setAllElementsColumnWise(lhs.getNElements(), lhs.constElements());
  system.getRHS().setAllElementsColumnWise(rhs.getNElements(), rhs.constElements());
}

}  // namespace

TEST(NgmLinearSystem, SolvesAndKeepsItsLeftHandSide)
{
  for (bool symmetric : {true, false}) {
    NgmLinearSystem system(6, 2, symmetric);
    const NgmMatrix a = randomPositiveDefinite(41, 6);
    const NgmMatrix solution = randomMatrix(42, 6, 2);
    fill(system, a, a * solution);
    EXPECT_FALSE(system.isSolved());
    EXPECT_EQ(system.solve(), 0);
    EXPECT_TRUE(system.isSolved());
    EXPECT_TRUE(sameBits(system.getLHS(), a));
    EXPECT_LT(maxDifference(system.getResults(), solution), 1e-13);

    const NgmLinearSystem copy(system);
    EXPECT_TRUE(copy.isSolved());
    system.setNotSolved();
    EXPECT_FALSE(system.isSolved());
    EXPECT_TRUE(sameBits(copy.getResults(), system.getResults()));
  }
}

TEST(NgmLinearSystem, SolvesAgainAfterEveryResize)
{
  NgmLinearSystem system;
  for (int n : {5, 17, 3, 33, 17, 1}) {
    system.resize(n, 1);
    EXPECT_FALSE(system.isSolved());
    EXPECT_TRUE(system.getLHS().isNull(0.));
    EXPECT_EQ(system.getResults().getNRows(), n);
    const NgmMatrix a = randomPositiveDefinite(std::uint64_t(n), n);
    const NgmMatrix solution = randomMatrix(43, n, 1);
    fill(system, a, a * solution);
    ASSERT_EQ(system.solve(), 0);
    EXPECT_LT(maxDifference(system.getResults(), solution), 1e-13);
  }
}

TEST(NgmLinearSystem, ReusesItsMemory)
{
  NgmLinearSystem system(33, 1, true);
  fill(system, randomPositiveDefinite(44, 33), randomMatrix(45, 33, 1));
  system.solve();
  const double *stores[] = {system.getLHS().constElements(), system.getRHS().constElements(),
                            system.getResults().constElements()};
  system.resize(17, 1);
  fill(system, randomPositiveDefinite(46, 17), randomMatrix(47, 17, 1));
  system.solve();
  EXPECT_EQ(system.getLHS().constElements(), stores[0]);
  EXPECT_EQ(system.getRHS().constElements(), stores[1]);
  EXPECT_EQ(system.getResults().constElements(), stores[2]);
}

TEST(NgmLinearSystem, NullEquationsLeaveTheOthersUndisturbed)
{
  const NgmMatrix a = randomPositiveDefinite(48, 5);
  const NgmMatrix b = randomMatrix(49, 5, 2);
  NgmLinearSystem system(5, 2, true);
  fill(system, a, b);
  system.solve();
  system.setNullEquation(2);
  EXPECT_FALSE(system.isSolved());
  ASSERT_EQ(system.solve(), 0);

  NgmMatrix reducedA(4, 4, true);
  a.extractSubMatrix(reducedA, {0, 1, 3, 4});
  NgmLinearSystem reduced(4, 2, true);
  reduced.getLHS() = reducedA;
  for (int t = 0; t < 2; ++t) {
    int row = 0;
    for (int i : {0, 1, 3, 4})
      reduced.getRHS().setElement(row++, t, b(i, t));
  }
  ASSERT_EQ(reduced.solve(), 0);
  for (int t = 0; t < 2; ++t) {
    EXPECT_EQ(system.getResults()(2, t), 0.);
    int row = 0;
    for (int i : {0, 1, 3, 4})
      EXPECT_NEAR(system.getResults()(i, t), reduced.getResults()(row++, t), 1e-14);
  }
}

TEST(NgmLinearSystem, SingularSystemsAreNotSolved)
{
  NgmLinearSystem system(3, 1, true);
  EXPECT_GT(system.solve(), 0);
  EXPECT_FALSE(system.isSolved());
  EXPECT_TRUE(system.debug(0).startsWith(QStringLiteral("Linear system\nSolved: false\nLHS\n")));
}

TEST(NgmLinearSystem, TellsSingularSystemsFromThoseThatAreNot)
{
  for (const int n : {5, 17, 40, 127, 128, 200}) {
    for (int trial = 0; trial < 10; ++trial) {
      SCOPED_TRACE(QStringLiteral("%1 rows, trial %2").arg(n).arg(trial).toStdString());
      // Indefinite, of full rank; a large and a small unit in two of the rows.
      NgmMatrix matrix = randomSymmetric(std::uint64_t(4000 + 20 * n + trial), n);
      for (int i = 0; i < n; ++i) {
        matrix.setElement(0, i, matrix(0, i) * 1e9);
        matrix.setElement(n - 1, i, matrix(n - 1, i) * 1e-9);
      }
      NgmLinearSystem system(n, 1, true);
      system.getLHS().copyDeep(matrix);
      EXPECT_EQ(system.solve(), 0);

      // One row, and column, twice.
      const int copy = n / 2;
      for (int i = 0; i < n; ++i)
        if (i != copy)
          matrix.setElement(copy, i, matrix(1, i));
      matrix.setElement(copy, copy, matrix(1, copy));
      system.getLHS().copyDeep(matrix);
      EXPECT_NE(system.solve(), 0);
      EXPECT_FALSE(system.isSolved());
    }
  }
}
