#include "geos/fit/NgmVModelGof.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "fit/private/NgmFitWeights.h"
#include "geos/vmodel/NgmVModel.h"

#include <cmath>

namespace {

constexpr double SMALLEST_SCALE = 1e-30;

void check(bool isValid, const char *message)
{
  if (!isValid)
    throw NbeProgrammingError(QString::fromLatin1(message));
}

}  // namespace

NgmVModelGof::NgmVModelGof()
    : _curve(&NgmEVarioExp::VARIOGRAM), _weighting(std::make_unique<NgmFitWeights>())
{
}

NgmVModelGof::~NgmVModelGof() = default;

void NgmVModelGof::setVarioModel(const NgmVModel &model)
{
  _model = std::make_unique<NgmVModel>(model);
}

void NgmVModelGof::setVarioExp(const NgmVariogramExpData &data, const NbbAEnum &curve)
{
  _data = data;
  setFittedCurve(curve);
}

/// A curve that the data lack is found out when it is needed.
void NgmVModelGof::setFittedCurve(const NbbAEnum &curve)
{
  const QString key = curve.getKeyString();
  _isCova = NgmECovaExp::existsKey(key);
  _hasCurve = _isCova || NgmEVarioExp::existsKey(key);
  if (_isCova)
    _curve = &NgmECovaExp::fromKey(key);
  else if (_hasCurve)
    _curve = &NgmEVarioExp::fromKey(key);
}

void NgmVModelGof::setCovarianceTransformation(const NgmICovaTransformation &transformation)
{
  _transformation = transformation.clone();
}

void NgmVModelGof::setNPairsExponent(double exponent)
{
  _weighting->setExponent(exponent);
}

void NgmVModelGof::setNPairsMinimum(int minimum)
{
  _weighting->setMinimumPairs(minimum);
}

void NgmVModelGof::setUseDeprecatedWeightingFunction(bool use)
{
  _weighting->deprecated = use;
}

double NgmVModelGof::getNPairsExponent() const
{
  return _weighting->exponent;
}

int NgmVModelGof::getNPairsMinimum() const
{
  return _weighting->minimumPairs;
}

bool NgmVModelGof::useDeprecatedWeightingFunction() const
{
  return _weighting->deprecated;
}

QVector<double> NgmVModelGof::getWeights(int direction, int i, int j) const
{
  check(direction >= 0 && direction < _data.getNDirections(), "Invalid direction index provided.");
  const int nVariables = _data.getNVariables();
  check(i >= 0 && i < nVariables && j >= 0 && j < nVariables, "Invalid variable index provided.");
  _checkCurve();
  QVector<double> nPairs;
  for (qint64 count : _data.getNumberOfPairs(direction, _isCova, i, j))
    nPairs << double(count);
  return getWeights(_data.getDistances(direction, _isCova, i, j), nPairs);
}

QVector<double> NgmVModelGof::getWeights(const QVector<double> &distances,
                                         const QVector<double> &nPairs) const
{
  check(distances.size() == nPairs.size(), "Inconsistent sizes of vectors (dist vs npairs).");
  const std::vector<double> weights =
      _weighting->normed(std::size_t(distances.size()), distances.constData(), nPairs.constData());
  return QVector<double>(weights.cbegin(), weights.cend());
}

double NgmVModelGof::evaluateGof() const
{
  _checkReady();
  double sum = 0.;
  for (int direction = 0; direction < _data.getNDirections(); ++direction) {
    for (int i = 0; i < _data.getNVariables(); ++i) {
      for (int j = _data.containsCross() ? 0 : i; j <= i; ++j)
        sum += _evaluateCurve(direction, i, j);
    }
  }
  return sum;
}

void NgmVModelGof::_checkReady() const
{
  check(_model != nullptr, "NgmVModelGof::evaluateGof: no variogram model");
  check(_details.size() == _model->getNVariables() &&
            _data.getNVariables() == _model->getNVariables(),
        "Inconsistent variable details regarding model number of variables");
  _checkCurve();
}

void NgmVModelGof::_checkCurve() const
{
  const bool exists =
      _hasCurve && (_isCova ? _data.hasCova(static_cast<const NgmECovaExp &>(*_curve))
                            : _data.hasVario(static_cast<const NgmEVarioExp &>(*_curve)));
  check(exists, "Unexisting variogram/covariance experimental curve");
}

QVector<double> NgmVModelGof::_values(int direction, int i, int j) const
{
  const int curve = _curve->getValue();
  return _isCova ? _data.getCovaColumn(direction, static_cast<NgmECovaExp::EValue>(curve), i, j)
                 : _data.getVarioColumn(direction, static_cast<NgmEVarioExp::EValue>(curve), i, j);
}

double NgmVModelGof::_evaluateCurve(int direction, int i, int j) const
{
  const QVector<double> values = _values(direction, i, j);
  const QVector<double> distances = _data.getDistances(direction, _isCova, i, j);
  const QVector<bool> isMasked = _data.getMasked(direction, _isCova, i, j);
  const QVector<double> weights = getWeights(direction, i, j);
  const NbgVector3D vector = _data.getDirectionVector(direction);
  double sum = 0.;
  for (int lag = 0; lag < values.size(); ++lag) {
    if (isMasked[lag] || !NbbGlobal::isDefined(values[lag]) ||
        !NbbGlobal::isDefined(distances[lag]))
      continue;
    NbgVector3D h = vector;
    h *= distances[lag];
    const double error = _evalModelError(values[lag], i, j, h);
    if (NbbGlobal::isDefined(error))
      sum += weights[lag] * weights[lag] * error * error;
  }
  return sum;
}

/// Undefined when the variables have no variance to compare with.
double NgmVModelGof::_evalModelError(double value, int i, int j, const NbgVector3D &h) const
{
  const double scale = std::sqrt(_variance(i) * _variance(j));
  if (!(scale >= SMALLEST_SCALE))
    return NbbGlobal::D_FFFF;
  return (value - _evalModel(i, j, h)) / scale;
}

double NgmVModelGof::_variance(int i) const
{
  return _data.hasC00() ? _data.getC00()(i, i) : _model->getC0IJ(i, i);
}

double NgmVModelGof::_evalModel(int i, int j, const NbgVector3D &h) const
{
  if (!_transformation)
    return _isCova ? _model->calcCovaIJ(i, j, h) : _model->calcVarioIJ(i, j, h);
  const auto transformed = [&](double covariance) {
    return _transformation->transformCova(i, j, covariance);
  };
  const double origin = _model->getC0IJ(i, j);
  const double covariance = transformed(origin - _model->calcVarioIJ(i, j, h));
  return _isCova ? covariance : transformed(origin) - covariance;
}
