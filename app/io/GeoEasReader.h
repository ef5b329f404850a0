#pragma once

#include "app/io/FieldParser.h"
#include "app/io/TableReader.h"
#include "app/io/TextRecords.h"

#include <array>
#include <optional>

namespace orvenal {

/// Reads a table in the GEO-EAS format, which GSLIB uses too, strictly, record by record, in
/// constant memory.
///
/// The first line is a title; the second one begins with the number of variables; then comes one
/// line per variable with its name, and the records: one line each, its fields separated by blanks
/// or tabs. Numbers may have the exponents of Fortran. Empty lines between records are skipped.
///
/// Grids have the numbers of their nodes behind the number of variables ("1 78 104 1"), the first
/// axis fastest in the records. When the centre of the first node and the size of the cells follow
/// ("... 178460 329620 0 40 40 1", and perhaps the number of realizations, one grid behind the
/// other), the table has the columns x, y, and z when there is more than one layer, in front; a
/// variable of the same name then is "x (field)". Other text on that line is a remark.
///
/// GSLIB takes values outside trimming limits (below -1e21) for missing; here a value is undefined
/// when it is listed as such, or named by the title as `(undefined: -999)` at its end.
class GeoEasReader : public TableReader
{
public:
  /// Opens the file and reads its header. `shownName` stands for the file in messages.
  GeoEasReader(const QString &path, const QString &shownName, const TableFormat &format);

  TableFormat getFormat() const override { return _format; }
  QString getFormatName() const override;
  const QString &getTitle() const { return _title; }

  bool next() override;
  Field classify(int column, double &number) const override;
  double getNumber(int column) const override;
  QString getText(int column) const override;

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;
  QString _getMissingHint() const override;

private:
  struct Grid
  {
    std::array<qint64, 3> nodes = {1, 1, 1};
    qint64 nRealizations = 1;
    bool isPlaced = false;
    std::array<double, 3> first{};
    std::array<double, 3> cell{};
  };

  void _readHeader();
  void _takeMark();
  void _readNames(int nVariables);
  void _readGrid();
  int _getNVariables() const { return getColumns().size() - _nAxes; }
  double _getCoordinate(int axis) const;
  qint64 _getNNodes() const;

  TableFormat _format;
  TextRecords _records;
  FieldParser _parser;
  QString _title;
  std::optional<Grid> _grid;
  int _nAxes = 0;     // columns that the grid gives
  qint64 _rank = -1;  // of the current record
};

}  // namespace orvenal
