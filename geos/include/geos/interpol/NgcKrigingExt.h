#pragma once

#include "geos/interpol/NgcAKrigingExt.h"

class NgcKriging;

/// Kriging with what it needs before it: external drifts brought from grids, samples moved to the
/// centres of their blocks for direct block kriging.
///
///     NgcKrigingExt kriging(QStringLiteral("KRIGING"));
///     kriging.setInputDataSet(samples);
///     kriging.setOutputDataSet(targets);
///     kriging.addExternalInDataset({Nbd::Role::EXTDRIFT}, seismicGrid);
///     kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
///     kriging.setExtDriftModel(drift);
class NgcKrigingExt : public NgcAKrigingExt
{
public:
  explicit NgcKrigingExt(const QString &key);
  ~NgcKrigingExt() override;

  void test(qint64 sampleNumber, NgmAInterpolTestResult &result) override;

  // As those of NgcKriging and NgcAKriging.

  void setFilterNugget(bool filter);
  void addFilterStructure(int structure);
  void setFilterDrifts(bool filter);
  void setSuperKriging(bool superKriging);
  void setProductionVolume(double volume);
  void setTheoreticalMean(double mean);
  void setBlockCorrectionCoefficient(int variable, double r);
  void setPointGaussianCorrelation(const NgmMatrix &correlation);
  void setGaussianKrigingPostPro(const NgmIKrigingPostPro &postPro);

private:
  NgcKriging &_getPlainKriging() const;
};
