#pragma once

#include "app/io/TableReader.h"

#include <QFile>

#include <string>
#include <string_view>
#include <vector>

namespace orvenal {

/// Reads a text table (CSV) with a header line strictly, record by record, in constant memory.
///
/// Understood: UTF-8 with or without byte-order mark (Latin-1 names when it is not UTF-8), Unix and
/// Windows line ends, fields in double quotes with doubled quotes, separators and line ends inside;
/// blanks around a field are dropped, empty lines are skipped.
///
/// Errors are NbeUserErrors that name file, line (of the record's start) and column: a file that
/// cannot be read or has no header, records of another length than the header, text where a number
/// is asked for, numbers that are not finite or not below 1e30 in size.
class CsvReader : public TableReader
{
public:
  /// Opens the file and reads its header. `shownName` stands for the file in messages.
  CsvReader(const QString &path, const QString &shownName, const TableFormat &format);

  char getSeparator() const { return _separator; }

  bool next() override;

  /// Line on which the current record begins, from 1.
  qint64 getLine() const { return _recordLine; }

  /// A field of the current record, blanks around it dropped.
  std::string_view getField(int column) const { return _fields[std::size_t(column)]; }

  double getNumber(int column) const override;
  QString getText(int column) const override;

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;

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
  [[noreturn]] void _failAtLine(qint64 line, const QString &message) const;

  char _separator;
  char _decimal;
  std::vector<std::string> _undefinedTexts;
  std::vector<double> _undefinedNumbers;

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
