#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

namespace orvenal {

/// How a text table is written.
struct CsvFormat
{
  /// ',', ';', tab or ' ' (any number of blanks); 0 finds out from the header.
  char separator = 0;

  /// '.' or ','.
  char decimal = '.';

  /// Texts that stand for an undefined value. One that is a number stands for all its spellings
  /// ("-999" for -999.0).
  QStringList undefined = {QString(), QStringLiteral("NA")};
};

/// Reads a text table (CSV) with a header line strictly, record by record, in constant memory.
///
/// Understood: UTF-8 with or without byte-order mark (Latin-1 names when it is not UTF-8), Unix and
/// Windows line ends, fields in double quotes with doubled quotes, separators and line ends inside;
/// blanks around a field are dropped, empty lines are skipped.
///
/// Errors are NbeUserErrors that name file, line (of the record's start) and column: a file that
/// cannot be read or has no header, records of another length than the header, text where a number
/// is asked for, numbers that are not finite or not below 1e30 in size.
class CsvReader
{
public:
  /// Opens the file and reads its header. `shownName` stands for the file in messages.
  CsvReader(const QString &path, const QString &shownName, const CsvFormat &format);

  const QStringList &getColumns() const { return _columns; }
  char getSeparator() const { return _separator; }

  /// The index of a column. When it is missing, the message lists those that exist; `wantedBy` says
  /// who asked.
  int findColumn(const QString &name, const QString &wantedBy) const;

  /// Goes to the next record; false at the end of the file.
  bool next();

  /// Line on which the current record begins, from 1.
  qint64 getLine() const { return _recordLine; }

  /// A field of the current record, blanks around it dropped.
  std::string_view getField(int column) const { return _fields[std::size_t(column)]; }

  /// The number in a field, NbbGlobal::D_FFFF when it is undefined.
  double getNumber(int column) const;

  /// Throws the error of a field of the current record, or of the record.
  [[noreturn]] void fail(int column, const QString &message) const;
  [[noreturn]] void fail(const QString &message) const;

private:
  struct Slice
  {
    std::size_t begin;
    std::size_t length;
  };

  void _openFile();
  void _readHeader();
  void _detectSeparator();
  int _peek();
  int _get();
  bool _fill();
  bool _isSeparator(int c) const;
  void _skipBlanks();
  bool _readRecord();
  void _readField();
  void _readQuotedField();
  void _readPlainField();
  bool _endOfRecord();
  void _append(int c);
  void _cutFields();
  void _setUndefined(const QStringList &markers);
  bool _isUndefined(std::string_view field, bool isNumber, double value) const;
  bool _parse(std::string_view field, double &value) const;
  [[noreturn]] void _failNumber(int column) const;
  [[noreturn]] void _failAt(qint64 line, const QString &message) const;

  QString _shownName;
  char _separator;
  char _decimal;
  std::vector<std::string> _undefinedTexts;
  std::vector<double> _undefinedNumbers;
  QStringList _columns;

  QFile _file;
  std::vector<char> _chunk;
  std::size_t _position = 0;
  std::size_t _available = 0;
  qint64 _line = 1;
  qint64 _recordLine = 1;
  std::string _record;
  std::vector<Slice> _slices;
  std::vector<std::string_view> _fields;
};

}  // namespace orvenal
