#pragma once

#include "geos/interpol/NgcAKriging.h"

/// Kriging at the samples of an output data set.
///
///     NgcKriging kriging(QStringLiteral("KRIGING"));
///     kriging.setInputDataSet(samples);    // variable under Nbd::Role::V
///     kriging.setOutputDataSet(grid);      // V, STDEV and VARIANCE, open for writing
///     kriging.setVarioModel(model);
///     kriging.setUsingMovingNeighborhood(neighborhood);
///     kriging.start();
///     kriging.wait();
class NgcKriging : public NgcAKriging
{
public:
  explicit NgcKriging(const QString &key);
  ~NgcKriging() override;

protected:
  void _preProcessing() override;
  void _preLaunchThreads() override;
  void _postProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
};
