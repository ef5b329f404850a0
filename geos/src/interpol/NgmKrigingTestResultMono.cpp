#include "geos/interpol/NgmKrigingTestResultMono.h"

#include "basic/base/NbbStringFormat.h"
#include "geos/interpol/NgmABlock.h"

namespace {

constexpr int maximumRowsAtLevelOne = 10;
constexpr int matrixDigits = 8;

QString matrixText(const NgmMatrix &matrix, int level)
{
  return matrix.toString(level == 1 ? maximumRowsAtLevelOne : -1, matrixDigits,
                         QStringLiteral("  "));
}

}  // namespace

double NgmKrigingTestResultMono::getVariance() const
{
  return NbbGlobal::isDefined(standardDeviation) ? standardDeviation * standardDeviation
                                                 : NbbGlobal::D_FFFF;
}

double NgmKrigingTestResultMono::getSumOfPositiveWeights() const
{
  return NbbGlobal::isDefined(sumOfWeights) && NbbGlobal::isDefined(sumOfNegativeWeights)
             ? sumOfWeights - sumOfNegativeWeights
             : NbbGlobal::D_FFFF;
}

QString NgmKrigingTestResultMono::toString(int level, bool withEllipse, bool withBlock) const
{
  const NbbStringFormat format = NbbStringFormat::createFromVarType(Nbd::TYPE_DOUBLE);
  const auto number = [&format](double value) { return format.valueToString(value); };

  QString text =
      QStringLiteral("  Estimated value: %1\n").arg(number(estimation)) +
      QStringLiteral("  Variance: %1\n").arg(number(getVariance())) +
      QStringLiteral("  Standard deviation: %1\n").arg(number(standardDeviation)) +
      QStringLiteral("  Mean distance to target: %1\n").arg(number(distanceToTarget)) +
      QStringLiteral("\n  Sum of weights: %1\n").arg(number(sumOfWeights)) +
      QStringLiteral("  Sum of positive weights: %1\n").arg(number(getSumOfPositiveWeights())) +
      QStringLiteral("  Sum of negative weights: %1\n").arg(number(sumOfNegativeWeights)) +
      QStringLiteral("  Weight attached to the mean: %1\n").arg(number(weightForMean)) +
      QStringLiteral("  Lagrange parameter #1: %1\n").arg(number(firstLagrange)) +
      QStringLiteral("  Variance of Z*: %1\n").arg(number(varianceZStar)) +
      QStringLiteral("  Covariance between Z and Z*: %1\n").arg(number(covarianceZZStar)) +
      QStringLiteral("  Correlation between Z and Z*: %1\n").arg(number(correlationZZStar)) +
      QStringLiteral("  Slope of the regression Z | Z*: %1\n").arg(number(slopeZZStar)) +
      QStringLiteral("  Kriging Efficiency: %1\n").arg(number(krigingEfficiency)) +
      QStringLiteral("  Signal to noise ratio: %1\n").arg(number(noise)) +
      QStringLiteral("  Number of sample: %1\n").arg(numberOfSamples) +
      QStringLiteral("  Number of equations: %1\n").arg(numberOfEquations) +
      QStringLiteral("  Number of Right Hand Side: %1\n").arg(numberOfRightHandSides);
  text += QStringLiteral("\n  Left Hand Side:\n") + QStringLiteral("  ---------------\n") +
          matrixText(leftHandSide, level);
  text += QStringLiteral("\n  Right Hand Side:\n") + QStringLiteral("  ----------------\n") +
          matrixText(rightHandSide, level);
  if (withEllipse) {
    text += QStringLiteral("  Neighborhood Ellipse Size: %1\n").arg(ellipseSize.toString());
    text += QStringLiteral("  Neighborhood Ellipse Rotation: %1\n").arg(ellipseRotation.toString());
  }
  if (withBlock && block) {
    text += QStringLiteral("  Block Size: %1\n").arg(block->getSize().toString());
    text += QStringLiteral("  Block Rotation: %1\n").arg(block->getRotation().toString());
  }
  return text;
}

QString NgmKrigingTestResultMono::debug(int level) const
{
  return toString(level, ellipseSize.isDefined(), true);
}
