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

  /// Components that the estimate leaves out: the nugget, structures of the model by their index,
  /// the drifts (and the mean of simple kriging).
  void setFilterNugget(bool filter) { _setFilterNugget(filter); }
  void addFilterStructure(int structure) { _addFilterStructure(structure); }
  void setFilterDrifts(bool filter) { _setFilterDrifts(filter); }

  /// Block kriging that tells the precision of the mean of large blocks: for a block of volume Vb
  /// with the kriging variance V, the mean m and the production volume P, the outputs of
  /// getRoleSSDV(): V Vb, getRoleSpecificVolume(): V Vb / m^2 and getRoleCoeffOfVariation():
  /// sqrt(V Vb / m^2 / P).
  void setSuperKriging(bool superKriging) { _setSuperKriging(superKriging); }
  void setProductionVolume(double volume) { _setProductionVolume(volume); }
  void setTheoreticalMean(double mean) { _setTheoreticalMean(mean); }

protected:
  void _preProcessing() override;
  void _preLaunchThreads() override;
  void _postProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
};
