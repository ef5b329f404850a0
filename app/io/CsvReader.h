#pragma once

#include "app/io/FieldParser.h"
#include "app/io/TableReader.h"
#include "app/io/TextRecords.h"

#include <string_view>

namespace orvenal {

/// Reads a text table (CSV) with a header line strictly, record by record, in constant memory.
///
/// Records and fields are those of TextRecords, numbers and undefined values those of FieldParser;
/// on top of their errors: a file without a header, records of another length than the header.
class CsvReader : public TableReader
{
public:
  /// Opens the file and reads its header. `shownName` stands for the file in messages.
  CsvReader(const QString &path, const QString &shownName, const TableFormat &format);

  TableFormat getFormat() const override { return _format; }
  QString getFormatName() const override;
  char getSeparator() const { return _format.separator; }

  bool next() override;

  /// Line on which the current record begins, from 1.
  qint64 getLine() const { return _records.getLine(); }

  /// A field of the current record, blanks around it dropped.
  std::string_view getField(int column) const { return _records.getField(column); }

  Field classify(int column, double &number) const override;
  double getNumber(int column) const override;
  QString getText(int column) const override;

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;

private:
  void _readHeader();
  bool _isSeparatorLine() const;

  TableFormat _format;
  TextRecords _records;
  FieldParser _parser;
  qint64 _headerLine = 1;
};

}  // namespace orvenal
