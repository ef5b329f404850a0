#include "geos/simu/NgmDistributionTriangular.h"

#include "geos/simu/NgmDensityFunctions.h"

NgmDistributionTriangular::NgmDistributionTriangular(quint64 seed, tSize size, bool trace)
    : NgmDistributionTriangular(0., 0.5, 1., seed, size, trace)
{
}

NgmDistributionTriangular::NgmDistributionTriangular(double min, double mode, double max,
                                                     quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Triangular"), seed, size, trace),
      _min(min),
      _mode(mode),
      _max(max),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace)
{
}

double NgmDistributionTriangular::nextR()
{
  double t = 0.;
  double height = 0.;
  do {
    t = _min + _uniform1.nextR() * (_max - _min);
    height = t <= _mode ? (t - _min) / (_mode - _min) : (_max - t) / (_max - _mode);
  } while (height < _uniform2.nextR());
  return t;
}

double NgmDistributionTriangular::getDf(double value) const
{
  return NgmDensityFunctions::dfTriangular(value, _min, _mode, _max);
}

double NgmDistributionTriangular::getCdf(double value) const
{
  return NgmDensityFunctions::cdfTriangular(value, _min, _mode, _max);
}

double NgmDistributionTriangular::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfTriangular(p, _min, _mode, _max);
}

QString NgmDistributionTriangular::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("min=%1, mode=%2, max=%3").arg(_min).arg(_mode).arg(_max);
}
