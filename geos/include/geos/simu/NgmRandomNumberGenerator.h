#pragma once

#include <QtGlobal>

#include <array>

/// Pseudo-random integers from a seed, the same on every machine.
///
/// Formula:  x' = (a x + b) mod m, the numbers then shuffled through a table of 32: a new x takes
///           the place of the table entry that it selects, and that entry is the output
/// Shape:    numbers in [0, m[, in [1, m[ while zero is excluded (the default)
/// Requires: the seed lies in the same interval
/// Cost:     a few integer operations per number
/// Source:   [Bays and Durham, 1976] for the table, [Schrage, 1979] for the recurrence
///
/// The recurrence is defined as (x mod q) a - r (x div q) + b with q = m div a and r = m mod a,
/// plus m as often as that is negative. Because (q - 1) a + b < m in every constant set, the result
/// is the residue of a x + b and never reaches m; so the table index never reaches 32.
///
/// A generator is used by one thread at a time. Copies continue the same sequence.
class NgmRandomNumberGenerator
{
public:
  /// Constant sets: modulus, multiplier, offset.
  enum tSize : int {
    SIZE_0 = 0,  ///< 256, 137, 187
    SIZE_1 = 1,  ///< 32363, 157, 0
    SIZE_2 = 2,  ///< 32749, 162, 0
    SIZE_3 = 3,  ///< 2147483399, 40692, 0
    SIZE_4 = 4,  ///< 2147483563, 40014, 0
    SIZE_5 = 5,  ///< 2147483647, 16807, 0
    SIZE_6 = 6,  ///< 2147483647, 39373, 0
    SIZE_7 = 7   ///< 2^48, 31167285, 1
  };

  /// What distributions use unless told otherwise.
  static constexpr tSize DEFAULT_SIZE = SIZE_5;

  static constexpr int TABLE_LENGTH = 32;
  using Table = std::array<quint64, TABLE_LENGTH>;

  /// Constants of a set; NbeProgrammingError for a set that does not exist.
  static quint64 getSizeModulus(const tSize &size);
  static quint64 getSizeMultiplier(const tSize &size);
  static qint64 getSizeOffset(const tSize &size);

  /// Zero is excluded; see initialize().
  NgmRandomNumberGenerator(const quint64 &seed, const tSize &size);

  /// Starts the sequence of the stored seed and size again.
  void initialize();

  /// Starts a sequence. NbeProgrammingError, the generator being unchanged, unless the seed is
  /// below the modulus and not a zero that is excluded or that the recurrence would never leave.
  void initialize(const quint64 &seed, const tSize &size);

  /// The next number, shuffled.
  quint64 nextNumber()
  {
    const quint64 number = calculateNextNumber();
    quint64 &entry = _shuffledTable[_tableIndex(number)];
    const quint64 result = entry;
    entry = number;
    return result;
  }

  /// Passes n - 1 numbers by and gives the n-th; one number for n below 1.
  quint64 nextNumber(int n);

  /// One step of the recurrence, past the table.
  quint64 calculateNextNumber()
  {
    do
      _current = _step(_current);
    while (_current == 0 && _excludeZero);
    return _current;
  }

  /// Replaces the table by the next 32 numbers of the recurrence.
  void fillShuffledTable();

  /// NbeProgrammingError when the offset is null: the recurrence would stay at zero.
  void includeZero();
  void excludeZero() { _excludeZero = 1; }

  /// Not 0 while zero is excluded.
  const quint16 &getExcludeZero() const { return _excludeZero; }
  const quint64 &getSeed() const { return _seed; }
  const tSize &getSize() const { return _size; }
  const quint64 &getModulus() const { return _modulus; }
  const quint64 &getMultiplier() const { return _multiplier; }
  const qint64 &getOffset() const { return _offset; }
  /// Modulus div multiplier.
  const quint64 &getQuotient() const { return _quotient; }
  /// Modulus mod multiplier.
  const quint64 &getRest() const { return _rest; }
  /// Last number of the recurrence.
  const quint64 &getCurrentNumber() const { return _current; }
  /// 32 / modulus: takes a number to its table index.
  const double &getScale() const { return _scale; }
  const Table &getShuffledTable() const { return _shuffledTable; }

private:
  int _tableIndex(quint64 number) const { return int(double(qint64(number)) * _scale); }

  /// The quotient (a x) div m, estimated from the reciprocal of m / a, is at most one too small.
  /// All is computed modulo 2^64; the remainder is below 2 m and so exact.
  quint64 _step(quint64 x) const
  {
    const quint64 quotient = quint64((static_cast<unsigned __int128>(x) * _reciprocal) >> 64);
    const quint64 next = _multiplier * x + quint64(_offset) - quotient * _modulus;
    return next >= _modulus ? next - _modulus : next;
  }

  quint16 _excludeZero = 1;
  quint64 _seed = 0;
  tSize _size = DEFAULT_SIZE;
  quint64 _modulus = 0;
  quint64 _multiplier = 0;
  qint64 _offset = 0;
  quint64 _quotient = 0;
  quint64 _rest = 0;
  quint64 _current = 0;
  double _scale = 0.;
  Table _shuffledTable = {};
  quint64 _reciprocal = 0;  ///< floor(2^64 a / m)
};
