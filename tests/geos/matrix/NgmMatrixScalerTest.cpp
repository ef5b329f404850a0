#include "geos/matrix/NgmMatrixScaler.h"

#include "MatrixTestSupport.h"

using namespace testsupport;

TEST(NgmMatrixScaler, ScalesToUnitDiagonalAndBack)
{
  const NgmMatrix a = matrixOf(2, 2, {4., -3., -3., 9.});
  const NgmMatrixScaler scaler(a);
  EXPECT_TRUE(scaler.isActive());
  EXPECT_EQ(scaler.getScaler(), (QVector<double>{4., 9.}));
  EXPECT_EQ(scaler.getInvScaler(), (QVector<double>{0.25, 1. / 9.}));
  // The sign of the reference element makes the off-diagonal term positive.
  EXPECT_LT(maxDifference(scaler.convertMatrixToScaled(a), matrixOf(2, 2, {1., 0.5, 0.5, 1.})),
            1e-15);
  EXPECT_LT(maxDifference(scaler.convertMatrixFromScaled(scaler.convertMatrixToScaled(a)), a),
            1e-14);
  EXPECT_DOUBLE_EQ(scaler.convertElementToScaled(1, 0, 6.), -1.);
  EXPECT_DOUBLE_EQ(scaler.convertElementFromScaled(1, 0, 1.), -6.);
}

TEST(NgmMatrixScaler, InactiveScalersChangeNothing)
{
  NgmMatrixScaler scaler;
  EXPECT_FALSE(scaler.isActive());
  const NgmMatrix a = randomMatrix(51, 3, 2);
  EXPECT_TRUE(sameBits(scaler.convertMatrixToScaled(a), a));
  EXPECT_EQ(scaler.convertElementFromScaled(7, 8, 1.5), 1.5);
  scaler = NgmMatrixScaler(matrixOf(1, 1, {4.}));
  scaler.setActive(false);
  EXPECT_EQ(scaler.convertElementToScaled(0, 0, 1.5), 1.5);
}

TEST(NgmMatrixScaler, ErrorTexts)
{
  const NgmMatrixScaler scaler(matrixOf(2, 2, {1., 0., 0., 1.}));
  const QString element = assertion("NgmMatrixScaler", "Invalid matrix element requested");
  const QString dimension = assertion("NgmMatrixScaler", "Inconsistent matrix dimension");
  expectErrors({
      {"row", NbeError::PROGRAMMING, element, [&] { scaler.convertElementToScaled(2, 0, 1.); }},
      {"column", NbeError::PROGRAMMING, element,
       [&] { scaler.convertElementFromScaled(0, -1, 1.); }},
      {"to", NbeError::PROGRAMMING, dimension,
       [&] { scaler.convertMatrixToScaled(NgmMatrix(3, 3, false)); }},
      {"from", NbeError::PROGRAMMING, dimension,
       [&] { scaler.convertMatrixFromScaled(NgmMatrix(2, 3, false)); }},
      {"reference", NbeError::PROGRAMMING, dimension,
       [&] { NgmMatrixScaler(NgmMatrix(2, 3, false)); }},
  });
}
