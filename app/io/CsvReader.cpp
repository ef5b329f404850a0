#include "app/io/CsvReader.h"

#include "app/console/Interruption.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QObject>
#include <QTextCodec>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace orvenal {

namespace {

constexpr std::size_t chunkSize = 1 << 20;
constexpr std::size_t longestRecord = 16 << 20;
constexpr int END = -1;

bool isBlank(int c)
{
  return c == ' ' || c == '\t';
}

std::string_view trimmed(std::string_view text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

QString toText(std::string_view bytes)
{
  QTextCodec::ConverterState state;
  static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
  const QString text = utf8->toUnicode(bytes.data(), int(bytes.size()), &state);
  return state.invalidChars == 0 && state.remainingChars == 0
             ? text
             : QString::fromLatin1(bytes.data(), int(bytes.size()));
}

/// A field for a message: short, without line ends.
QString shown(std::string_view field)
{
  constexpr int longest = 40;
  const QString text = toText(field.substr(0, 4 * longest)).simplified();
  return text.size() <= longest ? text : text.left(longest) + QChar(0x2026);
}

/// Whether a number that double does not hold is too small for it, not too large.
bool isTiny(std::string_view number)
{
  const std::size_t exponent = number.find_first_of("eE");
  if (exponent != std::string_view::npos)
    return number.substr(exponent + 1, 1) == "-";
  return number.substr(0, number.find('.')).find_first_of("123456789") == std::string_view::npos;
}

QString separatorName(char separator)
{
  switch (separator) {
    case '\t':
      return QObject::tr("tabs");
    case ' ':
      return QObject::tr("blanks");
    default:
      return QObject::tr("\"%1\"").arg(QLatin1Char(separator));
  }
}

QString lineName(qint64 line)
{
  return QObject::tr("line %1").arg(line);
}

}  // namespace

CsvReader::CsvReader(const QString &path, const QString &shownName, const TableFormat &format)
    : TableReader(shownName),
      _separator(format.separator),
      _decimal(format.decimal),
      _file(path),
      _chunk(chunkSize)
{
  _openFile();
  if (_separator == 0)
    _detectSeparator();
  _readHeader();
  _setUndefined(format.undefined);
}

bool CsvReader::next()
{
  if (!_readRecord())
    return false;
  if (int(_fields.size()) != getColumns().size())
    fail(QObject::tr("%1 fields, but the header has %2 columns (separated by %3)")
             .arg(QString::number(_fields.size()), QString::number(getColumns().size()),
                  separatorName(_separator)));
  return true;
}

double CsvReader::getNumber(int column) const
{
  const std::string_view field = getField(column);
  double value = 0.;
  const bool isNumber = _parse(field, value);
  if (_isUndefined(field, isNumber, value))
    return NbbGlobal::D_FFFF;
  if (!isNumber)
    _failNumber(column);
  constexpr double largest = 1e30;  // from there on the libraries take a number for undefined
  if (!(std::abs(value) < largest))
    fail(column, std::isfinite(value) ? QObject::tr("%1 is too large").arg(shown(field))
                                      : QObject::tr("%1 is not finite").arg(shown(field)));
  return value;
}

QString CsvReader::getText(int column) const
{
  return toText(getField(column));
}

QString CsvReader::_getPlace() const
{
  return lineName(_recordLine);
}

QString CsvReader::_getHeaderPlace() const
{
  return lineName(1);
}

void CsvReader::_openFile()
{
  if (!_file.open(QIODevice::ReadOnly))
    throw NbeUserError(
        QObject::tr("%1: cannot be read: %2").arg(_getShownName(), _file.errorString()));
  if (!_fill())
    throw NbeUserError(QObject::tr("%1: the file is empty").arg(_getShownName()));
  const auto startsWith = [this](const char *bytes, std::size_t n) {
    return _available >= n && std::memcmp(_chunk.data(), bytes, n) == 0;
  };
  if (startsWith("\xFF\xFE", 2) || startsWith("\xFE\xFF", 2))
    _failAtLine(1, QObject::tr("the file is UTF-16 text; save it as UTF-8"));
  if (startsWith("\xEF\xBB\xBF", 3))
    _position = 3;
}

/// The separator that the header line has most of outside quotes; blanks when it has none.
void CsvReader::_detectSeparator()
{
  const char candidates[] = {'\t', ';', ','};
  int counts[] = {0, 0, 0};
  bool quoted = false;
  bool started = false;
  for (std::size_t i = _position; i < _available; ++i) {
    const char c = _chunk[i];
    if (c == '"')
      quoted = !quoted;
    if (!quoted && (c == '\n' || c == '\r') && started)
      break;
    started = started || !(isBlank(c) || c == '\n' || c == '\r');
    for (int k = 0; k < 3; ++k)
      counts[k] += !quoted && c == candidates[k] ? 1 : 0;
  }
  const int best = int(std::max_element(counts, counts + 3) - counts);
  _separator = counts[best] > 0 ? candidates[best] : ' ';
}

void CsvReader::_readHeader()
{
  if (_separator == _decimal)
    throw NbeUserError(
        QObject::tr("%1: the fields are separated by %2, which cannot be the decimal mark too")
            .arg(_getShownName(), separatorName(_separator)));
  if (!_readRecord())
    throw NbeUserError(QObject::tr("%1: the file has no header line").arg(_getShownName()));
  QStringList columns;
  for (const std::string_view &field : _fields)
    columns << toText(field);
  _setColumns(columns);
}

bool CsvReader::_fill()
{
  Interruption::check();
  const qint64 n = _file.read(_chunk.data(), qint64(_chunk.size()));
  if (n < 0)
    throw NbeUserError(
        QObject::tr("%1: cannot be read: %2").arg(_getShownName(), _file.errorString()));
  _position = 0;
  _available = std::size_t(n);
  return n > 0;
}

int CsvReader::_peek()
{
  if (_position == _available && !_fill())
    return END;
  return static_cast<unsigned char>(_chunk[_position]);
}

int CsvReader::_get()
{
  const int c = _peek();
  if (c != END)
    ++_position;
  if (c == '\n')
    ++_line;
  return c;
}

bool CsvReader::_isSeparator(int c) const
{
  return _separator == ' ' ? isBlank(c) : c == _separator;
}

void CsvReader::_skipBlanks()
{
  while (isBlank(_peek()) && (_separator == ' ' || _peek() != _separator))
    ++_position;
}

/// Reads one record into `_fields`; false at the end of the file.
bool CsvReader::_readRecord()
{
  _record.clear();
  _slices.clear();
  for (;;) {
    _recordLine = _line;
    _skipBlanks();
    if (_peek() == END)
      return false;
    if (!_endOfRecord())
      break;
  }
  for (;;) {
    _readField();
    if (_endOfRecord())
      break;
    ++_position;  // the separator
    if (_separator == ' ') {
      _skipBlanks();
      if (_endOfRecord())
        break;
    }
  }
  _cutFields();
  return true;
}

/// Takes a line end ("\n", "\r\n" or "\r"), or sees the end of the file.
bool CsvReader::_endOfRecord()
{
  const int c = _peek();
  if (c == END)
    return true;
  if (c == '\n') {
    _get();
    return true;
  }
  if (c != '\r')
    return false;
  ++_position;
  if (_peek() == '\n')
    ++_position;
  ++_line;
  return true;
}

void CsvReader::_readField()
{
  _skipBlanks();
  if (_peek() == '"')
    _readQuotedField();
  else
    _readPlainField();
}

void CsvReader::_readPlainField()
{
  const std::size_t begin = _record.size();
  for (int c = _peek(); c != END && c != '\n' && c != '\r' && !_isSeparator(c); c = _peek()) {
    _append(c);
    ++_position;
  }
  _slices.push_back({begin, _record.size() - begin});
}

void CsvReader::_readQuotedField()
{
  const std::size_t begin = _record.size();
  ++_position;
  for (;;) {
    const int c = _get();
    if (c == END)
      fail(QObject::tr("a quote (\") is opened and not closed"));
    if (c == '"') {
      if (_peek() != '"')
        break;
      ++_position;
    }
    _append(c);
  }
  _slices.push_back({begin, _record.size() - begin});
  if (_separator != ' ')
    _skipBlanks();
  const int c = _peek();
  if (c != END && c != '\n' && c != '\r' && !_isSeparator(c))
    fail(QObject::tr("text behind a closing quote (\"); a quote inside a field is doubled"));
}

void CsvReader::_append(int c)
{
  if (c == 0)
    fail(QObject::tr("a null byte; this is not a text file"));
  if (_record.size() >= longestRecord)
    fail(QObject::tr("the record is longer than 16 MB; this is not a table"));
  _record.push_back(char(c));
}

/// Views into the record, once it moves in memory no more.
void CsvReader::_cutFields()
{
  _fields.clear();
  for (const Slice &slice : _slices) {
    const std::string_view field(_record.data() + slice.begin, slice.length);
    _fields.push_back(trimmed(field));
  }
}

void CsvReader::_setUndefined(const QStringList &markers)
{
  for (const QString &marker : markers) {
    const QByteArray bytes = marker.trimmed().toUtf8();
    _undefinedTexts.emplace_back(bytes.constData(), std::size_t(bytes.size()));
    double value = 0.;
    if (_parse(_undefinedTexts.back(), value) && std::isfinite(value))
      _undefinedNumbers.push_back(value);
  }
}

bool CsvReader::_isUndefined(std::string_view field, bool isNumber, double value) const
{
  if (isNumber && std::isfinite(value))
    return std::find(_undefinedNumbers.begin(), _undefinedNumbers.end(), value) !=
           _undefinedNumbers.end();
  return std::find(_undefinedTexts.begin(), _undefinedTexts.end(), field) != _undefinedTexts.end();
}

/// Whether the whole field is a number; one beyond the range of double counts as infinite.
bool CsvReader::_parse(std::string_view field, double &value) const
{
  if (!field.empty() && field.front() == '+')
    field.remove_prefix(1);
  if (field.empty() || field.front() == '+')
    return false;
  char copy[64];
  if (_decimal == ',') {
    if (field.size() > sizeof(copy) || field.find('.') != std::string_view::npos)
      return false;
    std::replace_copy(field.begin(), field.end(), copy, ',', '.');
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

void CsvReader::_failNumber(int column) const
{
  const std::string_view field = getField(column);
  if (field.empty())
    fail(column, QObject::tr("the field is empty; to take empty fields for undefined, list \"\" "
                             "among the undefined texts"));
  QString hint;
  std::string swapped(field);
  std::replace(swapped.begin(), swapped.end(), _decimal == '.' ? ',' : '.', _decimal);
  double value = 0.;
  if (swapped != field && _parse(swapped, value))
    hint = QObject::tr("; for numbers like this set \"decimal\": \"%1\"")
               .arg(QLatin1Char(_decimal == '.' ? ',' : '.'));
  fail(column, QObject::tr("\"%1\" is not a number").arg(shown(field)) + hint);
}

void CsvReader::_failAtLine(qint64 line, const QString &message) const
{
  _failAt(lineName(line), message);
}

}  // namespace orvenal
