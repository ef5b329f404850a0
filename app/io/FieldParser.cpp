#include "app/io/FieldParser.h"

#include "app/io/TextRecords.h"
#include "basic/base/NbbGlobal.h"

#include <QByteArray>
#include <QObject>
#include <QRegularExpression>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orvenal {

namespace {

/// From there on the libraries take a number for undefined.
constexpr double tooLarge = 1e30;

/// Whether a number that double does not hold is too small for it, not too large.
bool isTiny(std::string_view number)
{
  const std::size_t exponent = number.find_first_of("eE");
  if (exponent != std::string_view::npos)
    return number.substr(exponent + 1, 1) == "-";
  return number.substr(0, number.find('.')).find_first_of("123456789") == std::string_view::npos;
}

/// Whether a field is a number whose thousands are set apart: "1,234.5", "1.234,5", "1 234".
bool isGrouped(std::string_view field)
{
  static const QRegularExpression pattern(
      QStringLiteral("^[+-]?\\d{1,3}(?:([.,'\u2019\\s\u00A0\u202F])\\d{3})(?:\\1\\d{3})*"
                     "(?:[.,]\\d+)?$"));
  return pattern.match(textFromBytes(field)).hasMatch();
}

double checked(double value, const QString &shown, const TableReader &reader, int column)
{
  if (!(std::abs(value) < tooLarge))
    reader.fail(column, std::isfinite(value) ? QObject::tr("%1 is too large").arg(shown)
                                             : QObject::tr("%1 is not finite").arg(shown));
  return value;
}

TableReader::Field classified(double value, double &number)
{
  if (!(std::abs(value) < tooLarge))
    return TableReader::TEXT;
  number = value;
  return TableReader::NUMBER;
}

}  // namespace

bool isBelowLimit(const QString &text)
{
  static const QRegularExpression pattern(QStringLiteral("^\\s*<\\s*\\d*[.,]?\\d+\\s*$"));
  return pattern.match(text).hasMatch();
}

FieldParser::FieldParser(const TableFormat &format, Exponents exponents)
    : _decimal(format.decimal), _exponents(exponents)
{
  for (const QString &marker : format.undefined) {
    const QByteArray bytes = marker.trimmed().toUtf8();
    _undefinedTexts.emplace_back(bytes.constData(), std::size_t(bytes.size()));
    double value = 0.;
    if (!_parse(_undefinedTexts.back(), value))
      continue;
    if (std::isfinite(value))
      _undefinedNumbers.push_back(value);
    _isNaNUndefined = _isNaNUndefined || std::isnan(value);
  }
}

TableReader::Field FieldParser::classify(std::string_view field, double &number) const
{
  double value = 0.;
  const bool isNumber = _parse(field, value);
  if (_isUndefined(field, isNumber, value))
    return TableReader::UNDEFINED;
  return isNumber ? classified(value, number) : TableReader::TEXT;
}

TableReader::Field FieldParser::classify(double value, double &number) const
{
  return _isUndefined(value) ? TableReader::UNDEFINED : classified(value, number);
}

double FieldParser::read(std::string_view field, const TableReader &reader, int column) const
{
  double value = 0.;
  const bool isNumber = _parse(field, value);
  if (_isUndefined(field, isNumber, value))
    return NbbGlobal::D_FFFF;
  if (!isNumber)
    _failNumber(field, reader, column);
  return checked(value, shownText(field), reader, column);
}

double FieldParser::read(double value, const TableReader &reader, int column) const
{
  if (_isUndefined(value))
    return NbbGlobal::D_FFFF;
  return checked(value, QString::number(value), reader, column);
}

bool FieldParser::_isUndefined(double value) const
{
  if (std::isnan(value))
    return _isNaNUndefined;
  return std::find(_undefinedNumbers.begin(), _undefinedNumbers.end(), value) !=
         _undefinedNumbers.end();
}

bool FieldParser::_isUndefined(std::string_view field, bool isNumber, double value) const
{
  if (isNumber && std::isfinite(value))
    return _isUndefined(value);
  return std::find(_undefinedTexts.begin(), _undefinedTexts.end(), field) != _undefinedTexts.end();
}

/// Whether the whole field is a number; one beyond the range of double counts as infinite.
bool FieldParser::_parse(std::string_view field, double &value) const
{
  if (!field.empty() && field.front() == '+')
    field.remove_prefix(1);
  if (field.empty() || field.front() == '+')
    return false;
  const bool isFortran =
      _exponents == FORTRAN && field.find_first_of("dD") != std::string_view::npos;
  char copy[64];
  if (_decimal == ',' || isFortran) {
    if (field.size() > sizeof(copy) ||
        (_decimal == ',' && field.find('.') != std::string_view::npos))
      return false;
    std::transform(field.begin(), field.end(), copy, [=](char c) {
      return isFortran && (c == 'd' || c == 'D') ? 'e' : (c == _decimal ? '.' : c);
    });
    field = std::string_view(copy, field.size());
  }
  const char *end = field.data() + field.size();
  const std::from_chars_result result = std::from_chars(field.data(), end, value);
  if (result.ptr != end)
    return false;
  if (result.ec == std::errc::result_out_of_range)
    value = isTiny(field) ? 0. : HUGE_VAL;
  return true;
}

void FieldParser::_failNumber(std::string_view field, const TableReader &reader, int column) const
{
  if (field.empty())
    reader.fail(column, QObject::tr("the field is empty; to take empty fields for undefined, list "
                                    "\"\" among the undefined texts"));
  QString hint;
  std::string swapped(field);
  std::replace(swapped.begin(), swapped.end(), _decimal == '.' ? ',' : '.', _decimal);
  double value = 0.;
  if (swapped != field && _parse(swapped, value))
    hint = QObject::tr("; for numbers like this set \"decimal\": \"%1\"")
               .arg(QLatin1Char(_decimal == '.' ? ',' : '.'));
  if (hint.isEmpty() && isGrouped(field))
    hint = QObject::tr("; numbers are written without marks between thousands");
  if (isBelowLimit(textFromBytes(field)))
    hint = QObject::tr(
        "; for a value below a limit of detection put a number into the file, such as "
        "half of the limit, or list the text among the undefined ones");
  reader.fail(column, QObject::tr("\"%1\" is not a number").arg(shownText(field)) + hint);
}

}  // namespace orvenal
