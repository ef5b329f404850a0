#include "geos/interpol/NgmNeighborhoodMoving.h"

#include "basic/geom/NbgGeomEllipsoid.h"

#include <QObject>

#include <algorithm>

NgmNeighborhoodMoving::NgmNeighborhoodMoving() : _ellipseSize(1000., 1000., 1000.) {}

bool NgmNeighborhoodMoving::operator==(const NgmNeighborhoodMoving &other) const
{
  return _ellipseSize == other._ellipseSize && _ellipseRotation == other._ellipseRotation &&
         _ruleAnisotropicDistances == other._ruleAnisotropicDistances &&
         _sectorsNumber == other._sectorsNumber && _splitSectors == other._splitSectors &&
         _maximumNumberPerSector == other._maximumNumberPerSector &&
         _minimumNumber == other._minimumNumber && _ruleMaximumNumber == other._ruleMaximumNumber &&
         (!_ruleMaximumNumber || _maximumNumber == other._maximumNumber);
}

void NgmNeighborhoodMoving::setSectors(int number, int maximumPerSector, bool split)
{
  _sectorsNumber = number;
  _maximumNumberPerSector = maximumPerSector;
  _splitSectors = split;
}

void NgmNeighborhoodMoving::setRuleMinimumNumber(bool active, int number)
{
  _minimumNumber = active ? std::max(number, 0) : 0;
}

void NgmNeighborhoodMoving::setRuleMaximumNumber(bool active, int number)
{
  _ruleMaximumNumber = active;
  _maximumNumber = number;
}

int NgmNeighborhoodMoving::getMaximumNeighborsCount() const
{
  qint64 count = qint64(getSplittedSectorsNumber()) * _maximumNumberPerSector;
  if (_ruleMaximumNumber)
    count = std::min(count, qint64(_maximumNumber));
  count = std::max(count, qint64(_minimumNumber));
  return int(std::min(count, qint64(std::numeric_limits<int>::max())));
}

bool NgmNeighborhoodMoving::isScalable() const
{
  return _sectorsNumber <= 1 && !_splitSectors && _ruleAnisotropicDistances;
}

NbgGeomEllipsoid NgmNeighborhoodMoving::getEllipsoid() const
{
  NbgGeomEllipsoid ellipsoid;
  ellipsoid.setRadius(_ellipseSize);
  ellipsoid.setRotation(_ellipseRotation);
  return ellipsoid;
}

bool NgmNeighborhoodMoving::checkParameters(int dimension, QStringList &errors,
                                            QStringList &warnings) const
{
  errors.clear();
  warnings.clear();
  const auto require = [&errors](bool condition, const QString &message) {
    if (!condition)
      errors << message + QLatin1Char('\n');
  };

  require(dimension < 1 || _ellipseSize.x() >= 1e-10,
          QObject::tr("- Ellipsoid size along X cannot be null"));
  require(dimension < 2 || _ellipseSize.y() >= 1e-10,
          QObject::tr("- Ellipsoid size along Y cannot be null"));
  require(dimension < 3 || _ellipseSize.z() >= 1e-10,
          QObject::tr("- Ellipsoid size along Z cannot be null"));
  require(dimension >= 3 || !_splitSectors,
          QObject::tr("- Splitting sectors only available in 3D"));
  require(_sectorsNumber >= 1, QObject::tr("- Sector number cannot be negative or null"));
  require(_maximumNumberPerSector >= 1,
          QObject::tr("- Maximum number of samples per sector cannot be negative or null"));
  require(!_ruleMaximumNumber || _maximumNumber >= 1,
          QObject::tr("- Maximum number of samples cannot be negative or null"));
  require(qint64(getSplittedSectorsNumber()) * _maximumNumberPerSector >= _minimumNumber,
          QObject::tr("- Total number of samples in sectors (maximum number * sectors number) must "
                      "be greater or equal than minimum number of samples"));
  return errors.isEmpty();
}

QString NgmNeighborhoodMoving::debug(int) const
{
  const auto flag = [](bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
  };
  QString text;
  text += QStringLiteral("Ellipse: size=%1 rot=%2\n")
              .arg(_ellipseSize.toString(), _ellipseRotation.toString());
  text += QStringLiteral("Sectors: number=%1 maximum=%2 split=%3\n")
              .arg(QString::number(_sectorsNumber), QString::number(_maximumNumberPerSector),
                   flag(_splitSectors));
  text += QStringLiteral("Minimum: number=%1\n").arg(_minimumNumber);
  text += QStringLiteral("Maximum: number=%1\n")
              .arg(_ruleMaximumNumber ? QString::number(_maximumNumber) : flag(false));
  text += QStringLiteral("Aniso. : %1\n").arg(flag(_ruleAnisotropicDistances));
  return text;
}
