#pragma once

#include "app/io/FieldParser.h"
#include "app/io/TableReader.h"

#include <memory>
#include <vector>

namespace orvenal {

/// Reads the grid of a netCDF file as a table of its nodes, the first axis fastest: all variables
/// over the same dimensions (y, x) or (z, y, x) at once, as writeNetcdf() writes them.
///
/// Columns: x, y (and z), then the variables. Fill values, missing values and NaN are undefined;
/// nodes at which no variable is defined are left out. Memory: a row of each variable.
class NetcdfReader : public TableReader
{
public:
  /// Nothing for files of other layouts, which GDAL may read variable by variable: dimensions
  /// without coordinates or without a fixed length, packed values, references without WKT, and for
  /// a `format.layer`.
  static std::unique_ptr<NetcdfReader> tryOpen(const QString &path, const QString &shownName,
                                               const TableFormat &format);

  ~NetcdfReader() override;

  TableFormat getFormat() const override { return _format; }
  QString getFormatName() const override;

  bool next() override;
  Field classify(int column, double &number) const override;
  double getNumber(int column) const override;
  QString getText(int column) const override;
  QString getReference() const override { return _reference; }

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;

private:
  NetcdfReader(const QString &shownName, const TableFormat &format);

  struct Variable
  {
    int id;
    double fill;  ///< NaN without one
    std::vector<double> row;
  };

  bool _open(const QString &path);
  bool _findVariables();
  bool _addVariable(int id, const QString &name);
  bool _findCoordinates();
  bool _readAxis(int dimension, std::vector<double> &places) const;
  bool _readReference();
  QString _attribute(int variable, const char *name) const;
  void _readRow();
  void _read(int variable, double *row) const;
  double _getCoordinate(int axis) const;
  double _getValue(int column) const;
  int _getNAxes() const { return int(_dimensions.size()); }

  TableFormat _format;
  FieldParser _parser;
  int _file = -1;
  std::vector<int> _dimensions;      // of the grid, slowest first
  std::vector<std::size_t> _length;  // of them
  std::vector<Variable> _variables;
  std::vector<double> _axes[3];  // places along x, y, z; along a row of nodes for turned grids
  int _turned[2] = {-1, -1};     // variables x(j, i) and y(j, i) of a turned grid
  QString _reference;
  std::size_t _k = 0;  // of the current row
  std::size_t _j = 0;
  std::size_t _i = 0;  // of the node in it
  bool _hasRow = false;
};

}  // namespace orvenal
