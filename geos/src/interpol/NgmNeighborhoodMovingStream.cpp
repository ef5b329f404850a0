#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <QDataStream>

#include <array>
#include <limits>

// The stream of the parameters.

namespace {

// What changed with a version holds for those after it, unless the reader says otherwise.
constexpr unsigned int VERSION_FIRST = 161102;
constexpr unsigned int VERSION_MODE = 170104;
constexpr unsigned int VERSION_MAXIMUM = 170119;
constexpr unsigned int VERSION_CAP_RADIUS = 220214;
constexpr unsigned int VERSION = 220919;

int readInt(QDataStream &stream)
{
  quint32 value = 0;
  stream >> value;
  return int(value);
}

bool readFlag(QDataStream &stream)
{
  return readInt(stream) != 0;
}

double readDouble(QDataStream &stream)
{
  double value = 0.;
  stream >> value;
  return value;
}

void writeRule(QDataStream &stream, bool active, int value)
{
  stream << quint32(active);
  if (active)
    stream << quint32(value);
}

void writeRule(QDataStream &stream, bool active, double value)
{
  stream << quint32(active);
  if (active)
    stream << value;
}

void writeCap(QDataStream &stream, bool active, const NgcECutoffMode &mode, double threshold,
              const NbgVector3D &distance)
{
  stream << quint32(active);
  if (active)
    stream << quint32(mode.getValue()) << threshold << distance.x() << distance.y() << distance.z();
}

/// Both pairs with their values, where a value may not have been written: what a stream misses at
/// its end because of that is 0. Anything else missing is a stream cut short.
std::array<int, 4> readCodeNumberPairs(QDataStream &stream)
{
  std::array<int, 4> pairs = {};
  int count = 0;
  for (; count < 4 && !stream.atEnd(); ++count)
    pairs[count] = readInt(stream);
  const bool hasNoValue = count == 2 && pairs[0] == 0 && pairs[1] == 0;
  const bool hasFirstValue = count == 3 && pairs[0] != 0 && pairs[2] == 0;
  const bool hasSecondValue = count == 3 && pairs[0] == 0 && pairs[1] != 0;
  if (count < 4 && !hasNoValue && !hasFirstValue && !hasSecondValue)
    stream.setStatus(QDataStream::ReadPastEnd);
  return pairs;
}

}  // namespace

QList<unsigned int> NgmNeighborhoodMoving::_serializedVersions() const
{
  return {VERSION_FIRST, VERSION_MODE, VERSION_MAXIMUM, VERSION_CAP_RADIUS, VERSION};
}

unsigned int NgmNeighborhoodMoving::_currentSerializedVersion() const
{
  return VERSION;
}

void NgmNeighborhoodMoving::_serialize(QDataStream &stream) const
{
  stream << quint32(_mode.getValue()) << quint32(_sectorsNumber) << quint32(_splitSectors);
  if (_splitSectors)
    stream << quint32(getSplittedSectorsNumber());
  stream << quint32(_maximumNumberPerSector) << quint32(_minimumNumber)
         << quint32(_ruleMaximumNumber) << quint32(_maximumNumber) << _ellipseSize;
  _ellipseRotation.serialize(stream);

  stream << quint32(_ruleHeterotopicSearch) << quint32(_ruleIsotopicSearch)
         << quint32(_ruleAnisotropicDistances) << quint32(_ruleProximity);
  if (_ruleProximity)
    stream << _proximitySize;
  writeRule(stream, _ruleMaximumPerBlock, _maximumPerBlock);
  stream << quint32(_ruleKeepAllInBlock);
  writeRule(stream, _ruleMinimumGap, _minimumGap);
  writeRule(stream, _ruleMaximumDistance, _maximumDistance);
  writeRule(stream, _ruleMaximumEmptySectors, _maximumEmptySectors);
  stream << quint32(_emptySectorsConsecutive);
  writeCap(stream, _cutLarge.active, _cutLarge.mode, _cutLarge.threshold, _cutLarge.distance);
  writeCap(stream, _cutSmall.active, _cutSmall.mode, _cutSmall.threshold, _cutSmall.distance);
  writeRule(stream, _ruleOptimumPerCode, _optimumPerCode);
  writeRule(stream, _ruleMaximumPerCode, _maximumPerCode);
  writeRule(stream, _ruleMinimumCodeNumber, _minimumCodeNumber);
  writeRule(stream, _ruleMaximumCodeNumber, _maximumCodeNumber);
}

void NgmNeighborhoodMoving::_unserialize(QDataStream &stream, unsigned int version)
{
  NgmNeighborhoodMoving read;
  read._readNumbers(stream, version);
  _checkStream(stream);
  stream >> read._ellipseSize;
  _checkStream(stream);
  read._ellipseRotation.unserialize(stream);
  read._readRules(stream, version);
  read._readCodeRules(stream, version);
  _checkStream(stream);
  NgmNeighborhoodMoving::operator=(read);
}

void NgmNeighborhoodMoving::_readNumbers(QDataStream &stream, unsigned int version)
{
  if (version >= VERSION_MODE) {
    const int mode = readInt(stream);
    if (!NgcEMovNeighMode::existsValue(mode))
      _refuse(QStringLiteral("bad mode"));
    _mode = NgcEMovNeighMode::fromValue(mode);
  }
  _sectorsNumber = readInt(stream);
  _splitSectors = readFlag(stream);
  if (_splitSectors)
    readInt(stream);
  _maximumNumberPerSector = readInt(stream);
  _minimumNumber = readInt(stream);
  if (version > VERSION_MAXIMUM) {
    _ruleMaximumNumber = readFlag(stream);
    _maximumNumber = readInt(stream);
  }
}

void NgmNeighborhoodMoving::_readRules(QDataStream &stream, unsigned int version)
{
  _ruleHeterotopicSearch = readFlag(stream);
  _ruleIsotopicSearch = readFlag(stream);
  _ruleAnisotropicDistances = readFlag(stream);
  _ruleProximity = readFlag(stream);
  if (_ruleProximity)
    stream >> _proximitySize;

  _ruleMaximumPerBlock = readFlag(stream);
  if (_ruleMaximumPerBlock) {
    if (version < VERSION_MODE) {
      const quint32 count = quint32(readInt(stream));
      _checkCount(stream, count, sizeof(double), std::numeric_limits<int>::max());
      for (quint32 i = 0; i < count; ++i)
        readDouble(stream);
    }
    _maximumPerBlock = readInt(stream);
    if (version < VERSION_MAXIMUM)
      readInt(stream);
  }
  if (version > VERSION_MODE)
    _ruleKeepAllInBlock = readFlag(stream);

  _ruleMinimumGap = readFlag(stream);
  if (_ruleMinimumGap)
    _minimumGap = readDouble(stream);
  _ruleMaximumDistance = readFlag(stream);
  if (_ruleMaximumDistance)
    _maximumDistance = readDouble(stream);
  _ruleMaximumEmptySectors = readFlag(stream);
  if (_ruleMaximumEmptySectors)
    _maximumEmptySectors = readInt(stream);
  if (version > VERSION_MAXIMUM)
    _emptySectorsConsecutive = readFlag(stream);
  _cutLarge = _readCap(stream, version);
  _cutSmall = _readCap(stream, version);
}

NgmNeighborhoodMoving::_Cap NgmNeighborhoodMoving::_readCap(QDataStream &stream,
                                                            unsigned int version) const
{
  _Cap cap = {readFlag(stream), NgcECutoffMode::CUTOFF_REPLACE, 0., NbgVector3D()};
  if (!cap.active)
    return cap;
  const int mode = readInt(stream);
  if (!NgcECutoffMode::existsValue(mode))
    _refuse(QStringLiteral("bad mode of a cap"));
  cap.mode = NgcECutoffMode::fromValue(mode);
  cap.threshold = readDouble(stream);
  const double x = readDouble(stream);
  if (version > VERSION_CAP_RADIUS) {
    const double y = readDouble(stream);
    cap.distance = NbgVector3D(x, y, readDouble(stream));
  } else {
    cap.distance = NbgVector3D(x, x, x);
  }
  return cap;
}

void NgmNeighborhoodMoving::_readCodeRules(QDataStream &stream, unsigned int version)
{
  _ruleOptimumPerCode = readFlag(stream);
  if (_ruleOptimumPerCode)
    _optimumPerCode = readInt(stream);
  _ruleMaximumPerCode = readFlag(stream);
  if (_ruleMaximumPerCode)
    _maximumPerCode = readInt(stream);
  if (version <= VERSION_MAXIMUM)
    return;

  // Files depend on this: both pairs end in the rule of the maximum, and their values are looked
  // for under the flag of the rule above.
  if (_ruleMaximumPerCode) {
    const std::array<int, 4> pairs = readCodeNumberPairs(stream);
    setRuleMaximumCodeNumber(pairs[0] != 0, pairs[1]);
    setRuleMaximumCodeNumber(pairs[2] != 0, pairs[3]);
    return;
  }
  for (int pair = 0; pair < 2; ++pair)
    setRuleMaximumCodeNumber(readFlag(stream), 1);
}
