#include "geos/interpol/NgmNeighborhoodMoving.h"

#include "basic/geom/NbgGeomEllipsoid.h"

#include <QObject>

#include <algorithm>

namespace {

void require(bool condition, const QString &message, QStringList &errors)
{
  if (!condition)
    errors << message + QLatin1Char('\n');
}

/// Two settings of a rule: the value counts only while the rule is on.
template <class T>
bool sameRule(bool active, bool otherActive, const T &value, const T &otherValue)
{
  return active == otherActive && (!active || value == otherValue);
}

QString toText(bool value)
{
  return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString toText(bool active, int value)
{
  return active ? QString::number(value) : toText(false);
}

}  // namespace

NgmNeighborhoodMoving::NgmNeighborhoodMoving() : _ellipseSize(1000., 1000., 1000.) {}

bool NgmNeighborhoodMoving::_Cap::operator==(const _Cap &other) const
{
  return active == other.active &&
         (!active ||
          (mode == other.mode && threshold == other.threshold && distance == other.distance));
}

bool NgmNeighborhoodMoving::operator==(const NgmNeighborhoodMoving &other) const
{
  return _sameVolume(other) && _sameRules(other) && _sameCodeRules(other);
}

bool NgmNeighborhoodMoving::_sameVolume(const NgmNeighborhoodMoving &other) const
{
  return _mode == other._mode && _ellipseSize == other._ellipseSize &&
         _ellipseRotation == other._ellipseRotation && _rectangular == other._rectangular &&
         _ruleAnisotropicDistances == other._ruleAnisotropicDistances &&
         _sectorsNumber == other._sectorsNumber && _splitSectors == other._splitSectors &&
         _maximumNumberPerSector == other._maximumNumberPerSector &&
         _minimumNumber == other._minimumNumber &&
         sameRule(_ruleMaximumNumber, other._ruleMaximumNumber, _maximumNumber,
                  other._maximumNumber);
}

bool NgmNeighborhoodMoving::_sameRules(const NgmNeighborhoodMoving &other) const
{
  return _ruleHeterotopicSearch == other._ruleHeterotopicSearch &&
         _ruleIsotopicSearch == other._ruleIsotopicSearch &&
         sameRule(_ruleProximity, other._ruleProximity, _proximitySize, other._proximitySize) &&
         _ruleKeepAllInBlock == other._ruleKeepAllInBlock &&
         sameRule(_ruleMaximumPerBlock, other._ruleMaximumPerBlock, _maximumPerBlock,
                  other._maximumPerBlock) &&
         sameRule(_ruleMinimumGap, other._ruleMinimumGap, _minimumGap, other._minimumGap) &&
         sameRule(_ruleMaximumDistance, other._ruleMaximumDistance, _maximumDistance,
                  other._maximumDistance) &&
         sameRule(_ruleMaximumEmptySectors, other._ruleMaximumEmptySectors, _maximumEmptySectors,
                  other._maximumEmptySectors) &&
         sameRule(_ruleMaximumEmptySectors, other._ruleMaximumEmptySectors,
                  _emptySectorsConsecutive, other._emptySectorsConsecutive) &&
         _cutLarge == other._cutLarge && _cutSmall == other._cutSmall;
}

bool NgmNeighborhoodMoving::_sameCodeRules(const NgmNeighborhoodMoving &other) const
{
  return sameRule(_ruleOptimumPerCode, other._ruleOptimumPerCode, _optimumPerCode,
                  other._optimumPerCode) &&
         sameRule(_ruleMaximumPerCode, other._ruleMaximumPerCode, _maximumPerCode,
                  other._maximumPerCode) &&
         sameRule(_ruleMinimumCodeNumber, other._ruleMinimumCodeNumber, _minimumCodeNumber,
                  other._minimumCodeNumber) &&
         sameRule(_ruleMaximumCodeNumber, other._ruleMaximumCodeNumber, _maximumCodeNumber,
                  other._maximumCodeNumber);
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

void NgmNeighborhoodMoving::setRuleProximity(bool active, const NbgVector3D &halfExtents)
{
  _ruleProximity = active;
  _proximitySize = halfExtents;
}

void NgmNeighborhoodMoving::setRuleMaximumPerBlock(bool active, int number)
{
  _ruleMaximumPerBlock = active;
  _maximumPerBlock = number;
}

void NgmNeighborhoodMoving::setRuleMinimumGap(bool active, double gap)
{
  _ruleMinimumGap = active;
  _minimumGap = gap;
}

void NgmNeighborhoodMoving::setRuleMaximumDistanceWithoutSample(bool active, double distance)
{
  _ruleMaximumDistance = active;
  _maximumDistance = distance;
}

void NgmNeighborhoodMoving::setRuleMaximumEmptySectors(bool active, int count, bool consecutive)
{
  _ruleMaximumEmptySectors = active;
  _maximumEmptySectors = count;
  _emptySectorsConsecutive = consecutive;
}

void NgmNeighborhoodMoving::setRuleCutLarge(bool active, const NgcECutoffMode &mode,
                                            double threshold, const NbgVector3D &distance)
{
  _cutLarge = {active, mode, threshold, distance};
}

void NgmNeighborhoodMoving::setRuleCutSmall(bool active, const NgcECutoffMode &mode,
                                            double threshold, const NbgVector3D &distance)
{
  _cutSmall = {active, mode, threshold, distance};
}

void NgmNeighborhoodMoving::setRuleOptimumPerCode(bool active, int number)
{
  _ruleOptimumPerCode = active;
  _optimumPerCode = number;
}

void NgmNeighborhoodMoving::setRuleMaximumPerCode(bool active, int number)
{
  _ruleMaximumPerCode = active;
  _maximumPerCode = number;
}

void NgmNeighborhoodMoving::setRuleMinimumCodeNumber(bool active, int number)
{
  _ruleMinimumCodeNumber = active;
  _minimumCodeNumber = number;
}

void NgmNeighborhoodMoving::setRuleMaximumCodeNumber(bool active, int number)
{
  _ruleMaximumCodeNumber = active;
  _maximumCodeNumber = number;
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
  return _sectorsNumber <= 1 && !_splitSectors && !_ruleMinimumGap && !_ruleMaximumDistance &&
         !_ruleOptimumPerCode && !_ruleMaximumPerCode && _ruleAnisotropicDistances;
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
  if (_mode == NgcEMovNeighMode::FROM_BLOCK)
    return true;

  _checkSizes(dimension, errors);
  _checkNumbers(errors);
  require(!_ruleMinimumGap || !(_minimumGap < 0.),
          QObject::tr("- Minimum gap between two samples cannot be negative"), errors);
  _checkCodes(errors);
  _checkBlock(errors);
  require(qint64(getSplittedSectorsNumber()) * _maximumNumberPerSector >= _minimumNumber,
          QObject::tr("- Total number of samples in sectors (maximum number * sectors number) must "
                      "be greater or equal than minimum number of samples"),
          errors);
  require(!_ruleMaximumPerCode || !_ruleOptimumPerCode || _optimumPerCode <= _maximumPerCode,
          QObject::tr("- Maximum number of samples per category must be greater or equal than "
                      "optimum number of samples per category"),
          errors);

  require(!_exceedsEllipsoid(_cutSmall, dimension),
          QObject::tr("- Bottom cap area is larger than main ellipsoid. This might be useless."),
          warnings);
  require(!_exceedsEllipsoid(_cutLarge, dimension),
          QObject::tr("- Top cap area is larger than main ellipsoid. This might be useless."),
          warnings);
  return errors.isEmpty();
}

void NgmNeighborhoodMoving::_checkSizes(int dimension, QStringList &errors) const
{
  require(dimension < 1 || _ellipseSize.x() >= 1e-10,
          QObject::tr("- Ellipsoid size along X cannot be null"), errors);
  require(dimension < 2 || _ellipseSize.y() >= 1e-10,
          QObject::tr("- Ellipsoid size along Y cannot be null"), errors);
  require(dimension < 3 || _ellipseSize.z() >= 1e-10,
          QObject::tr("- Ellipsoid size along Z cannot be null"), errors);
  require(!_ruleProximity || !(_proximitySize.x() < 0.),
          QObject::tr("- Proximity rectangle size along X cannot be null"), errors);
  require(!_ruleProximity || !(_proximitySize.y() < 0.),
          QObject::tr("- Proximity rectangle size along Y cannot be null"), errors);
  require(!_ruleProximity || !(_proximitySize.z() < 0.),
          QObject::tr("- Proximity rectangle size along Z cannot be null"), errors);
  require(dimension >= 3 || !_splitSectors, QObject::tr("- Splitting sectors only available in 3D"),
          errors);
}

void NgmNeighborhoodMoving::_checkNumbers(QStringList &errors) const
{
  require(_sectorsNumber >= 1, QObject::tr("- Sector number cannot be negative or null"), errors);
  require(_maximumNumberPerSector >= 1,
          QObject::tr("- Maximum number of samples per sector cannot be negative or null"), errors);
  require(!_ruleMaximumNumber || _maximumNumber >= 1,
          QObject::tr("- Maximum number of samples cannot be negative or null"), errors);
}

void NgmNeighborhoodMoving::_checkCodes(QStringList &errors) const
{
  require(!_ruleOptimumPerCode || _optimumPerCode >= 1,
          QObject::tr("- Optimum number of samples per category cannot be negative or null"),
          errors);
  require(!_ruleMaximumPerCode || _maximumPerCode >= 1,
          QObject::tr("- Maximum number of samples per category cannot be negative or null"),
          errors);
  require(!_ruleMinimumCodeNumber || _minimumCodeNumber >= 0,
          QObject::tr("- Minimum number of categories cannot be negative"), errors);
  require(!_ruleMaximumCodeNumber || _maximumCodeNumber >= 1,
          QObject::tr("- Maximum number of categories cannot be negative or null"), errors);
  require(!_ruleMinimumCodeNumber || !_ruleMaximumCodeNumber ||
              _maximumCodeNumber >= _minimumCodeNumber,
          QObject::tr("- Minimum number of categories should be lower or equal to the Maximum "
                      "number of categories"),
          errors);
}

void NgmNeighborhoodMoving::_checkBlock(QStringList &errors) const
{
  require(!_ruleMaximumPerBlock || _maximumPerBlock >= 1,
          QObject::tr("- Maximum number of samples per block cannot be negative or null"), errors);
  require(!_ruleMaximumDistance || !(_maximumDistance < 0.),
          QObject::tr("- Maximum distance without any sample cannot be negative"), errors);
  require(!_ruleMaximumEmptySectors || _maximumEmptySectors >= 0,
          QObject::tr("- Maximum number of empty sectors cannot be negative"), errors);
  require(!_ruleMaximumPerBlock || _ruleKeepAllInBlock,
          QObject::tr("- You must use Select all the samples in the target cell/block\n to use "
                      "replace kriging by the average rule"),
          errors);
}

bool NgmNeighborhoodMoving::_exceedsEllipsoid(const _Cap &cap, int dimension) const
{
  return cap.active &&
         (cap.distance.x() > _ellipseSize.x() || cap.distance.y() > _ellipseSize.y() ||
          (dimension >= 3 && cap.distance.z() > _ellipseSize.z()));
}

QString NgmNeighborhoodMoving::debug(int) const
{
  QString text;
  text += QStringLiteral("Moving mode: %1\n").arg(_mode.getLabel());
  text += QStringLiteral("Ellipse: size=%1 rot=%2\n")
              .arg(_ellipseSize.toString(), _ellipseRotation.toString());
  text += QStringLiteral("Sectors: number=%1 maximum=%2 split=%3\n")
              .arg(QString::number(_sectorsNumber), QString::number(_maximumNumberPerSector),
                   toText(_splitSectors));
  text += QStringLiteral("Minimum: number=%1\n").arg(_minimumNumber);
  text += QStringLiteral("Maximum: number=%1\n").arg(toText(_ruleMaximumNumber, _maximumNumber));
  text += QStringLiteral("Aniso. : %1\n").arg(toText(_ruleAnisotropicDistances));
  text += QStringLiteral("PerCode: optimum=%1 maximum=%2\n")
              .arg(toText(_ruleOptimumPerCode, _optimumPerCode),
                   toText(_ruleMaximumPerCode, _maximumPerCode));
  text += QStringLiteral("NbCodes: minimum=%1 maximum=%2\n")
              .arg(toText(_ruleMinimumCodeNumber, _minimumCodeNumber),
                   toText(_ruleMaximumCodeNumber, _maximumCodeNumber));
  return text + _debugRules();
}

QString NgmNeighborhoodMoving::_debugRules() const
{
  QString text;
  const auto line = [&text](const char *label, const QString &value) {
    text += QLatin1String(label) + QLatin1Char(' ') + value + QLatin1Char('\n');
  };
  line("Rule Heterotopic     :", toText(_ruleHeterotopicSearch));
  line("Rule Isotopic        :", toText(_ruleIsotopicSearch));
  line("Rule Proximity       :", toText(_ruleProximity));
  line("Proximity Size       :", _proximitySize.toString());
  line("Block Keep All       :", toText(_ruleKeepAllInBlock));
  line("Rule Block Maximum   :", toText(_ruleMaximumPerBlock));
  line("Block Maximum Nb     :", QString::number(_maximumPerBlock));
  line("Rule Minimum Gap     :", toText(_ruleMinimumGap));
  line("Minimum Gap Dist.    :", QString::number(_minimumGap));
  line("Rule Max Dist No Spl :", toText(_ruleMaximumDistance));
  line("Max Dist No Spl      :", QString::number(_maximumDistance));
  line("Rule Empty Sect.     :", toText(_ruleMaximumEmptySectors));
  line("Max Sect. Empty      :", QString::number(_maximumEmptySectors));
  line("Empty Sect. Consecut :", toText(_emptySectorsConsecutive));
  line("Rule Large Cut       :", toText(_cutLarge.active));
  line("Large Cut Mode       :", _cutLarge.mode.getLabel());
  line("Large Cut Threshold  :", QString::number(_cutLarge.threshold));
  line("Large Cut Distance   :", _cutLarge.distance.toString());
  line("Rule Small Cut       :", toText(_cutSmall.active));
  line("Small Cut Mode       :", _cutSmall.mode.getLabel());
  line("Small Cut Threshold  :", QString::number(_cutSmall.threshold));
  line("Small Cut Distance   :", _cutSmall.distance.toString());
  return text;
}
