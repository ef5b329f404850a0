#pragma once

#include "app/io/FieldParser.h"
#include "app/io/GdalDataset.h"
#include "app/io/TableReader.h"

#include <array>
#include <vector>

namespace orvenal {

/// Reads a raster as a table of the centres of its cells, row by row from the top.
///
/// Columns: x, y, then the bands by their description, or band1, band2 ... where that is missing,
/// taken twice or x or y. Cells masked out (nodata, transparent) and NaN are undefined; scale and
/// offset of a band are applied. Cells in which no band is defined are left out, so that a raster
/// can say by its nodata where a mask ends.
///
/// A raster without a geotransform, of complex numbers, or in blocks too large to be read piecewise
/// is an error. Memory: a piece of a row.
class GdalRasterReader : public TableReader
{
public:
  /// Takes over the dataset.
  GdalRasterReader(GdalDatasetPtr dataset, const QString &shownName, const TableFormat &format);

  TableFormat getFormat() const override { return _format; }
  QString getFormatName() const override;

  bool next() override;
  Field classify(int column, double &number) const override;
  double getNumber(int column) const override;
  QString getText(int column) const override;
  QString getReference() const override;

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;

private:
  void _checkBands();
  void _nameBands();
  void _readPiece();
  void _readBand(int band, int nCells);
  double _getCoordinate(int axis) const;
  double _getValue(int column) const;
  bool _isUndefined(int column) const;

  TableFormat _format;
  FieldParser _parser;
  GdalDatasetPtr _dataset;
  std::array<double, 6> _transform{};
  int _nBands;
  int _pieceSize;               // cells of a row that are read at a time
  int _row = 0;                 // of the piece
  int _pieceStart = 0;          // its first column of cells
  int _nCells = 0;              // of the piece
  int _cell = -1;               // of the piece, the current one
  std::vector<double> _values;  // band by band
  std::vector<unsigned char> _mask;
};

}  // namespace orvenal
