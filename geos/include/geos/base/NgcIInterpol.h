#pragma once

#include "geos/base/Ngc.h"

#include <QString>

class NgdADataSet;
class NgdANeighborhood;
class NgmNeighborhoodMoving;

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

  /// Every target uses all samples.
  virtual void setUsingUniqueNeighborhood() = 0;

  /// Each target uses the samples that the moving neighborhood selects.
  virtual void setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters) = 0;

  virtual void setOnErrorBehavior(Ngc::OnErrorBehavior behavior) = 0;

  /// Targets that failed in the last run, and a text on the first of them.
  virtual int getNumberOfInterpolErrors() const = 0;
  virtual QString getInterpolErrorsMessage() const = 0;

  /// The search object in use.
  virtual const NgdANeighborhood &getConstNeighborhood() const = 0;
};
