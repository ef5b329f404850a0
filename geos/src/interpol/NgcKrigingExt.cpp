#include "geos/interpol/NgcKrigingExt.h"

#include "geos/interpol/NgcKriging.h"

#include <QObject>

NgcKrigingExt::NgcKrigingExt(const QString &key)
    : NgcAKrigingExt(new NgcKriging(key), QObject::tr("Kriging"), true)
{
}

NgcKrigingExt::~NgcKrigingExt()
{
  _finish();
}

void NgcKrigingExt::test(qint64 sampleNumber, NgmAInterpolTestResult &result)
{
  try {
    _beginTest();
    _getKriging().test(sampleNumber, result);
  } catch (...) {
    _endTest();
    throw;
  }
  _endTest();
}

void NgcKrigingExt::setFilterNugget(bool filter)
{
  _getPlainKriging().setFilterNugget(filter);
}

void NgcKrigingExt::addFilterStructure(int structure)
{
  _getPlainKriging().addFilterStructure(structure);
}

void NgcKrigingExt::setFilterDrifts(bool filter)
{
  _getPlainKriging().setFilterDrifts(filter);
}

void NgcKrigingExt::setSuperKriging(bool superKriging)
{
  _getPlainKriging().setSuperKriging(superKriging);
}

void NgcKrigingExt::setProductionVolume(double volume)
{
  _getPlainKriging().setProductionVolume(volume);
}

void NgcKrigingExt::setTheoreticalMean(double mean)
{
  _getPlainKriging().setTheoreticalMean(mean);
}

void NgcKrigingExt::setBlockCorrectionCoefficient(int variable, double r)
{
  _getKriging().setBlockCorrectionCoefficient(variable, r);
}

void NgcKrigingExt::setPointGaussianCorrelation(const NgmMatrix &correlation)
{
  _getKriging().setPointGaussianCorrelation(correlation);
}

void NgcKrigingExt::setGaussianKrigingPostPro(const NgmIKrigingPostPro &postPro)
{
  _getKriging().setGaussianKrigingPostPro(postPro);
}

NgcKriging &NgcKrigingExt::_getPlainKriging() const
{
  return static_cast<NgcKriging &>(_getKriging());
}
