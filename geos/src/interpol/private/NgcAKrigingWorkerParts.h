#pragma once

#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgcAKrigingWorker.h"
#include "interpol/private/NgcKrigingModels.h"
#include "interpol/private/NgcKrigingNeighbors.h"
#include "interpol/private/NgcKrigingOutputs.h"
#include "interpol/private/NgcKrigingSolver.h"
#include "interpol/private/NgcKrigingStatistics.h"
#include "interpol/private/NgcKrigingTargets.h"
#include "interpol/private/NgcKrigingUniqueSolver.h"

/// What a worker is made of, and the state of the target under way.
struct NgcAKriging::Worker::_Parts
{
  explicit _Parts(const NgcAKriging &kriging)
      : outputs(kriging),
        targets(kriging),
        models(kriging),
        neighbors(kriging),
        solver(kriging),
        statistics(kriging.getNVariables(), kriging.isSimpleKriging()),
        c00(kriging.getNVariables())
  {
  }

  NgcKrigingOutputs outputs;
  NgcKrigingTargets targets;
  NgcKrigingModels models;
  NgdNeighborhoodContext neighborhood;
  bool isInitialized = false;
  NgcKrigingNeighbors neighbors;
  NgcKrigingSolver solver;
  std::unique_ptr<NgcKrigingUniqueSolver> uniqueSolver;
  NgcKrigingStatistics statistics;

  /// Of the buffer under way; null where they are not known.
  const qint64 *sampleNumbers = nullptr;

  /// Block whose size varies from target to target.
  QList<NbdAVariableNumeric *> blockVariables;

  // Of the target under way.
  int position = 0;
  const NgcENeighborhoodErrorCode *outcome = nullptr;
  const NgmKrigingSamples *samples = nullptr;
  QVector<double> c00;
  QVector<double> estimates;
  QVector<double> variances;
  QVector<double> weightsOfMean;
  QVector<double> weights;
};
