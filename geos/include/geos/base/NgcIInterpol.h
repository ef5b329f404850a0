#pragma once

#include "geos/base/Ngc.h"

#include <QString>

class NbgIntVector3D;
class NbgVector3D;
class NgdADataSet;
class NgdANeighborhood;
class NgdSampout;
class NgmABlock;
class NgmAInterpolTestResult;
class NgmNeighborhoodMoving;
struct NgmNeighborhoodNestedParam;

/// What can be set on every calculator that estimates values at targets from samples.
class NgcIInterpol
{
public:
  virtual ~NgcIInterpol() = default;

  virtual void setInputDataSet(const NgdADataSet &dataSet) = 0;
  virtual void setOutputDataSet(const NgdADataSet &dataSet) = 0;

  /// The calculator's own copies; null while not set.
  virtual const NgdADataSet *getInputDataset() const = 0;
  virtual const NgdADataSet *getOutputDataset() const = 0;

  /// Targets are points.
  virtual void setSupportPoint() = 0;

  /// Targets are blocks around the locations of the output.
  virtual void setSupportBlock(const NgmABlock &block) = 0;

  /// The size (the corners, for an unfolded block) of each block comes from variables of the
  /// output: see NgcAInterpol::getBlockVariables().
  virtual void setSupportBlockVarSize(bool varies) = 0;

  /// Every target uses all samples.
  virtual void setUsingUniqueNeighborhood() = 0;

  /// Each target uses the samples that the moving neighborhood selects.
  virtual void setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters) = 0;

  /// Adds a search level to fall back on when those before fail.
  virtual void addMovingAlternativeParameters(const NgmNeighborhoodNestedParam &change) = 0;

  /// Estimates a grid in parcels of at most `sizes` nodes; for each, only the samples inside its
  /// cells and `extension` beyond them, on each side and along the axes of the grid, are loaded. An
  /// extension that covers the search ellipsoid leaves the results as they are without parcels.
  virtual void setParcelling(const NbgIntVector3D &sizes, const NbgVector3D &extension) = 0;

  virtual void setOnErrorBehavior(Ngc::OnErrorBehavior behavior) = 0;

  /// Targets that failed in the last run, and a text on the first of them.
  virtual int getNumberOfInterpolErrors() const = 0;
  virtual QString getInterpolErrorsMessage() const = 0;

  /// The search object in use.
  virtual const NgdANeighborhood &getConstNeighborhood() const = 0;

  /// The sample output, or null without one.
  virtual NgdSampout *getSampout() const = 0;

  /// Estimates one target of the output on the calling thread and tells how; nothing is written.
  virtual void test(qint64 sampleNumber, NgmAInterpolTestResult &result) = 0;

  /// The search ellipsoid varies from target to target with variables of the output: see
  /// NgmLgsNeighborhoodMoving.
  virtual void setEnableLGS(bool enable) = 0;
  virtual void setLGSNeighRotationConvention(bool use, int conventionId) = 0;
  virtual void setLGSNeighRotationForce2D(bool force) = 0;
};
