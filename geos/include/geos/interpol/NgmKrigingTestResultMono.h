#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/matrix/NgmMatrix.h"

#include <memory>

class NgmABlock;
class NgmLgsVModel;

/// The estimation of one variable at one target. What was not computed is undefined.
///
/// In the formulas: w weights, V kriging variance, Z the true value, Z* the estimate.
struct NgmKrigingTestResultMono : public NbbIDebuggable
{
  double estimation = NbbGlobal::D_FFFF;
  double standardDeviation = NbbGlobal::D_FFFF;  ///< sqrt(V)
  double distanceToTarget = NbbGlobal::D_FFFF;   ///< mean over the neighbors
  double sumOfWeights = NbbGlobal::D_FFFF;
  double sumOfNegativeWeights = NbbGlobal::D_FFFF;
  double weightForMean = NbbGlobal::D_FFFF;
  double firstLagrange = NbbGlobal::D_FFFF;

  double varianceZStar = NbbGlobal::D_FFFF;     ///< Var(Z*)
  double covarianceZZStar = NbbGlobal::D_FFFF;  ///< Cov(Z, Z*)
  double correlationZZStar = NbbGlobal::D_FFFF;
  double slopeZZStar = NbbGlobal::D_FFFF;
  double krigingEfficiency = NbbGlobal::D_FFFF;

  /// Signal to noise ratio: the variance of the estimate, Var(Z*), over that of its error, V.
  double noise = NbbGlobal::D_FFFF;

  int numberOfSamples = 0;
  int numberOfEquations = 0;
  int numberOfRightHandSides = 0;
  NgmMatrix leftHandSide;
  NgmMatrix rightHandSide;

  /// Radii and rotation of the search ellipsoid of the level that was used; undefined radii with a
  /// unique neighborhood.
  NbgVector3D ellipseSize = NbgVector3D::Undefined;
  NbgRotation ellipseRotation;

  /// The model as patched for the target; null where models do not vary.
  std::shared_ptr<const NgmLgsVModel> model;

  /// The target's block; null for a point.
  std::shared_ptr<const NgmABlock> block;

  double getVariance() const;
  double getSumOfPositiveWeights() const;

  /// One line per value, then the matrices: at most 10 rows and columns of them at level 1. The
  /// flags ask for the search ellipsoid and for the block, when there is one.
  QString toString(int level, bool withEllipse, bool withBlock) const;

  /// The text with the ellipsoid, where its size is defined, and the block.
  QString debug(int level) const override;
};
