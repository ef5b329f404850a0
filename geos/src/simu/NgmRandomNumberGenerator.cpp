#include "geos/simu/NgmRandomNumberGenerator.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"

namespace {

struct Constants
{
  quint64 modulus;
  quint64 multiplier;
  qint64 offset;
};

constexpr Constants CONSTANTS[] = {
    {256, 137, 187},        {32363, 157, 0},
    {32749, 162, 0},        {2147483399, 40692, 0},
    {2147483563, 40014, 0}, {2147483647, 16807, 0},
    {2147483647, 39373, 0}, {quint64(1) << 48, 31167285, 1},
};
constexpr int N_SIZES = sizeof(CONSTANTS) / sizeof(CONSTANTS[0]);

/// No number reaches the modulus, and the sum of a residue and the offset stays below twice as
/// much.
constexpr bool areBounded()
{
  for (const Constants &c : CONSTANTS)
    if ((c.modulus / c.multiplier - 1) * c.multiplier + quint64(c.offset) >= c.modulus)
      return false;
  return true;
}
static_assert(areBounded(), "a constant set lets the recurrence reach its modulus");

const Constants &constantsOf(int size)
{
  if (size < 0 || size >= N_SIZES)
    NBE_FAIL(QStringLiteral("Invalid generator size"));
  return CONSTANTS[size];
}

/// The reason why a seed is refused; empty for a good one.
QString refusal(quint64 seed, const Constants &c, bool zeroExcluded)
{
  if (seed >= c.modulus)
    return QStringLiteral("NgmRandomNumberGenerator::initialize: Initial seed must be in [0, %1[")
        .arg(c.modulus);
  if (seed == 0 && c.offset == 0)
    return QStringLiteral(
        "NgmRandomNumberGenerator::initialize: If offset is null, zero initial seed is forbidden");
  if (seed == 0 && zeroExcluded)
    return QStringLiteral(
        "NgmRandomNumberGenerator::initialize: If you want to exclude zero seeds, zero initial "
        "seed "
        "is forbidden");
  return QString();
}

}  // namespace

quint64 NgmRandomNumberGenerator::getSizeModulus(const tSize &size)
{
  return constantsOf(size).modulus;
}

quint64 NgmRandomNumberGenerator::getSizeMultiplier(const tSize &size)
{
  return constantsOf(size).multiplier;
}

qint64 NgmRandomNumberGenerator::getSizeOffset(const tSize &size)
{
  return constantsOf(size).offset;
}

NgmRandomNumberGenerator::NgmRandomNumberGenerator(const quint64 &seed, const tSize &size)
{
  initialize(seed, size);
}

void NgmRandomNumberGenerator::initialize()
{
  initialize(_seed, _size);
}

void NgmRandomNumberGenerator::initialize(const quint64 &seed, const tSize &size)
{
  const Constants &constants = constantsOf(size);
  const QString reason = refusal(seed, constants, _excludeZero != 0);
  if (!reason.isEmpty())
    throw NbeProgrammingError(reason);

  _seed = seed;
  _size = size;
  _modulus = constants.modulus;
  _multiplier = constants.multiplier;
  _offset = constants.offset;
  _scale = double(TABLE_LENGTH) / double(_modulus);
  _quotient = _modulus / _multiplier;
  _rest = _modulus % _multiplier;
  _reciprocal = quint64((static_cast<unsigned __int128>(_multiplier) << 64) / _modulus);
  _current = _seed % _modulus;
  fillShuffledTable();
}

quint64 NgmRandomNumberGenerator::nextNumber(int n)
{
  for (int i = 1; i < n; ++i) {
    const quint64 number = calculateNextNumber();
    _shuffledTable[_tableIndex(number)] = number;
  }
  return nextNumber();
}

void NgmRandomNumberGenerator::fillShuffledTable()
{
  for (quint64 &entry : _shuffledTable)
    entry = calculateNextNumber();
}

void NgmRandomNumberGenerator::includeZero()
{
  if (_offset == 0)
    throw NbeProgrammingError(QStringLiteral(
        "NgmRandomNumberGenerator::includeZero: If offset is null, zero seed are forbidden"));
  _excludeZero = 0;
}
