#include "geos/vmodel/NgmAVStruct.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/interval/NbiIntervalData.h"
#include "vmodel/private/NgmCovaKernels.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SMALLEST_RANGE = 1e-30;
constexpr double COEFFICIENT_TOLERANCE = 1e-10;

/// NaN is refused too.
bool isRange(double value)
{
  return value > SMALLEST_RANGE;
}

NbgVector3D dividedByPositive(double scale, const NbgVector3D &coefficients)
{
  NbgVector3D ranges;
  for (int axis = 0; axis < 3; ++axis)
    ranges[axis] = coefficients[axis] > 0. ? scale / coefficients[axis] : 0.;
  return ranges;
}

QString yesOrNo(bool value)
{
  return value ? QStringLiteral("true") : QStringLiteral("false");
}

}  // namespace

NgmAVStruct::NgmAVStruct(const NgmEVStruct &type) : _type(type) {}

NgmAVStruct::NgmAVStruct(const NgmEVStruct &type, const NgmModelContext &context)
    : _type(type), _context(context)
{
}

NgmAVStruct::~NgmAVStruct() = default;

QString NgmAVStruct::debug(int level) const
{
  QString text = QStringLiteral("Structure Type=%1\n").arg(_type.getLabel());
  text += QStringLiteral("Range=%1\n").arg(getPracticalScaleFactor());
  text += QStringLiteral("Delta=%1\n").arg(_scale);
  text += QStringLiteral("Isotropic=%1\n").arg(yesOrNo(_isotropic));
  text += QStringLiteral("Isotropic2D=%1\n").arg(yesOrNo(_isotropic2D));
  text += QStringLiteral("Rotation:\n") + _rotation.debug(level);
  text += QStringLiteral("Anisotropy:\n") + _anisotropy.debug(level);
  for (int i = 0; i < getNAuxiliaryParameters(); ++i)
    text += QStringLiteral("%1=%2\n").arg(getAuxiliaryName(i)).arg(getAuxiliaryValue(i));
  return text;
}

void NgmAVStruct::setAuxiliaryParameter(int /*index*/, double /*value*/) {}

int NgmAVStruct::getIRFDegree() const
{
  return -1;
}

bool NgmAVStruct::isFactorized() const
{
  return false;
}

bool NgmAVStruct::isDifferentiable() const
{
  return false;
}

bool NgmAVStruct::isScaleFactorSignificant() const
{
  return true;
}

int NgmAVStruct::getNAuxiliaryParameters() const
{
  return 0;
}

double NgmAVStruct::getAuxiliaryValue(int /*index*/) const
{
  return 0.;
}

QString NgmAVStruct::getAuxiliaryName(int /*index*/) const
{
  return QString();
}

NbiIntervalData NgmAVStruct::getAuxiliaryBounds(int /*index*/) const
{
  return NbiIntervalData::Infinite();
}

bool NgmAVStruct::isAuxiliaryCoordinate(int /*index*/) const
{
  return false;
}

double NgmAVStruct::calcFirstDerivative(const NbgVector3D & /*reducedH*/) const
{
  throw NbeProgrammingError(
      QStringLiteral("NgmAVStruct::calcFirstDerivative: should never be called"));
}

double NgmAVStruct::calcSecondDerivative(const NbgVector3D & /*reducedH*/) const
{
  throw NbeProgrammingError(
      QStringLiteral("NgmAVStruct::calcSecondDerivative: should never be called"));
}

void NgmAVStruct::calcCovaFromDist(int /*n*/, const double * /*dist*/, double * /*out*/) const
{
  throw NbeProgrammingError(
      QStringLiteral("NgmAVStruct::calcCovaFromDist: should never be called"));
}

void NgmAVStruct::calcCovas(const Separations &separations, double sill, bool add, double *covas,
                            qint64 stride) const
{
  constexpr int BLOCK = 256;
  double dist[BLOCK];
  double values[BLOCK];
  const Separations &s = separations;
  for (int t = 0; t < s.nTargets; ++t) {
    double *out = covas + t * stride;
    const int n = s.nSamplesOf(t);
    for (int first = 0; first < n; first += BLOCK) {
      const int count = std::min(BLOCK, n - first);
      for (int k = 0; k < count; ++k) {
        const int i = first + k;
        const NgmCovaKernels::Vector v = NgmCovaKernels::reduce(
            {s.targetX[t] - s.x[i], s.targetY[t] - s.y[i], s.targetZ[t] - s.z[i]}, s.rotation,
            s.anisotropy);
        dist[k] = NbgVector3D(v.x, v.y, v.z).norm();
      }
      calcCovaFromDist(count, dist, values);
      for (int k = 0; k < count; ++k)
        out[first + k] = (add ? out[first + k] : 0.) + sill * values[k];
    }
  }
}

void NgmAVStruct::calcCovaFromVectors(int /*n*/, const double * /*vectors*/, double * /*out*/) const
{
  throw NbeProgrammingError(
      QStringLiteral("NgmAVStruct::calcCovaFromVectors: should never be called"));
}

void NgmAVStruct::setContext(const NgmModelContext &context)
{
  if (getIRFDegree() > context.getMaxIrfDegree())
    throw NbeProgrammingError(QStringLiteral("NgmAVStruct::setContext: invalid Irf Degree"));
  _context = context;
  _setAnisotropy(_anisotropy);  // which axes count follows from the dimension
  _setupParameters();
}

void NgmAVStruct::setRanges(const NbgVector3D &practicalRanges)
{
  const int nDim = _context.getNDimensions();
  if (!isRange(practicalRanges.x()))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for X Component"));
  if (nDim > 1 && !isRange(practicalRanges.y()))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for Y Component"));
  if (nDim > 2 && !isRange(practicalRanges.z()))
    throw NbeProgrammingError(
        QStringLiteral("NgmAVStruct::setRanges: Invalid range for Z Component"));

  double smallest = practicalRanges.x();
  for (int axis = 1; axis < nDim; ++axis)
    smallest = std::min(smallest, practicalRanges[axis]);
  NbgVector3D coefficients = NbgVector3D::Unit;
  coefficients[0] = smallest / practicalRanges.x();
  for (int axis = 1; axis < nDim; ++axis)
    coefficients[axis] = smallest / practicalRanges[axis];
  _setScaleFactor(smallest);
  _setAnisotropy(coefficients);
}

void NgmAVStruct::setRangeIsotropic(double practicalRange)
{
  if (!isRange(practicalRange))
    throw NbeProgrammingError(QStringLiteral("NgmAVStruct::setRangeIsotropic: Invalid range"));
  _setScaleFactor(practicalRange);
  _setAnisotropy(NbgVector3D::Unit);
}

void NgmAVStruct::updateToIsotropic()
{
  _setAnisotropy(NbgVector3D::Unit);
}

NbgVector3D NgmAVStruct::getPracticalRanges() const
{
  return dividedByPositive(getPracticalScaleFactor(), _anisotropy);
}

NbgVector3D NgmAVStruct::getTheoRanges() const
{
  return dividedByPositive(_scale, _anisotropy);
}

void NgmAVStruct::normalizeStructure(double d)
{
  _scale /= d;
}

QStringList NgmAVStruct::summary(const QString &prefix) const
{
  return {prefix + QObject::tr("Ranges: ") + getPracticalRanges().toString(),
          prefix + QObject::tr("Rotation: ") + _rotation.toString()};
}

void NgmAVStruct::_setScaleFactor(double practicalRange)
{
  if (!isRange(practicalRange))
    throw NbeProgrammingError(QStringLiteral("NgmAVStruct::_setScaleFactor: null range"));
  _scale = practicalRange / _practicalFactor;
}

void NgmAVStruct::_matchPracticalScale(double practicalScale)
{
  const double below = std::nextafter(_scale, 0.);
  const double above = std::nextafter(_scale, 2. * _scale);
  for (const double scale : {_scale, below, above}) {
    if (scale * _practicalFactor == practicalScale) {
      _scale = scale;
      return;
    }
  }
}

void NgmAVStruct::_setupParameters() {}

void NgmAVStruct::_setAnisotropy(const NbgVector3D &anisotropy)
{
  const int nDim = _context.getNDimensions();
  _isotropic2D = nDim >= 2 && std::abs(anisotropy.x() - anisotropy.y()) < COEFFICIENT_TOLERANCE;
  _isotropic = true;
  for (int axis = 0; axis < nDim; ++axis)
    _isotropic = _isotropic && std::abs(anisotropy[axis] - 1.) < COEFFICIENT_TOLERANCE;
  _anisotropy = anisotropy;
}

double NgmAVStruct::_getReducedDistance(const NbgVector3D &reducedH) const
{
  return reducedH.norm() / _scale;
}
