#pragma once

#include "app/io/TableReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvenal {

/// Whether a text says that a value is below a limit of detection: "<0.5", "< 5".
bool isBelowLimit(const QString &text);

/// Takes the fields of a table as numbers, undefined values or texts; one rule for all formats.
///
/// A field is undefined when it is one of the markers, or a number equal to one of them. All that
/// is listed counts and nothing else: neither -999 nor numbers below -1e21 are undefined by habit.
class FieldParser
{
public:
  /// FORTRAN knows exponents written with a D too ("1.0D+03").
  enum Exponents { PLAIN, FORTRAN };
  explicit FieldParser(const TableFormat &format, Exponents exponents = PLAIN);

  TableReader::Field classify(std::string_view field, double &number) const;
  TableReader::Field classify(double value, double &number) const;

  /// The number in a field, NbbGlobal::D_FFFF when it is undefined; all else is an error of the
  /// reader's current record.
  double read(std::string_view field, const TableReader &reader, int column) const;

  /// The same for a value that is stored as a number. NaN is undefined when a marker spells it.
  double read(double value, const TableReader &reader, int column) const;

private:
  bool _isUndefined(double value) const;
  bool _isUndefined(std::string_view field, bool isNumber, double value) const;
  bool _parse(std::string_view field, double &value) const;
  [[noreturn]] void _failNumber(std::string_view field, const TableReader &reader,
                                int column) const;

  char _decimal;
  Exponents _exponents;
  bool _isNaNUndefined = false;
  std::vector<std::string> _undefinedTexts;
  std::vector<double> _undefinedNumbers;
};

}  // namespace orvenal
