#include "app/io/NetcdfWriter.h"

#include "app/base/ProgramVersion.h"
#include "app/console/Interruption.h"
#include "app/io/GridTable.h"
#include "app/io/SpatialReference.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QObject>
#include <QStringList>

#include <hdf5.h>
#include <netcdf.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <vector>

namespace orvenal {

namespace {

constexpr double fillValue = std::numeric_limits<double>::quiet_NaN();

/// An open file. Every call is checked; the first failure is the error.
class NetcdfFile
{
public:
  NetcdfFile(const QString &path, const QString &shownName) : _shownName(shownName)
  {
    errno = 0;
    check(nc_create(QFile::encodeName(path).constData(), NC_NETCDF4 | NC_CLOBBER, &_id));
    _isOpen = true;
  }
  ~NetcdfFile()
  {
    if (_isOpen)
      nc_close(_id);
  }
  NetcdfFile(const NetcdfFile &) = delete;
  NetcdfFile &operator=(const NetcdfFile &) = delete;

  int id() const { return _id; }

  /// The library says little of a disk that is full; the system has said it before.
  void check(int status) const
  {
    if (status == NC_NOERR)
      return;
    const bool isOfSystem = errno == ENOSPC || errno == EFBIG || errno == EDQUOT;
    const char *reason = isOfSystem ? std::strerror(errno) : nc_strerror(status);
    throw NbeUserError(
        QObject::tr("%1: cannot be written: %2").arg(_shownName, QString::fromLocal8Bit(reason)));
  }

  int dimension(const QString &name, int length) const
  {
    int dimension = -1;
    check(nc_def_dim(_id, name.toUtf8().constData(), std::size_t(length), &dimension));
    return dimension;
  }

  int variable(const QString &name, nc_type type, const std::vector<int> &dimensions) const
  {
    int variable = -1;
    check(nc_def_var(_id, name.toUtf8().constData(), type, int(dimensions.size()),
                     dimensions.data(), &variable));
    return variable;
  }

  /// Nothing for an empty text.
  void attribute(int variable, const char *name, const QString &text) const
  {
    const QByteArray bytes = text.toUtf8();
    if (!bytes.isEmpty())
      check(nc_put_att_text(_id, variable, name, std::size_t(bytes.size()), bytes.constData()));
  }

  void attribute(int variable, const char *name, double value) const
  {
    check(nc_put_att_double(_id, variable, name, NC_DOUBLE, 1, &value));
  }

  void close()
  {
    _isOpen = false;
    check(nc_close(_id));
  }

private:
  QString _shownName;
  int _id = -1;
  bool _isOpen = false;
};

/// Names of variables and dimensions, each once.
class Names
{
public:
  QString take(const QString &wanted)
  {
    QString name = wanted.simplified().replace('/', '_');
    if (name.isEmpty() ||
        !(name[0].isLetterOrNumber() || name[0] == '_' || name[0].unicode() > 127))
      name.prepend('_');
    while (_taken.contains(name))
      name += '_';
    _taken << name;
    return name;
  }

private:
  QStringList _taken;
};

/// Writes one grid: names and dimensions first, then the numbers.
class Writer
{
public:
  Writer(const QString &path, const QString &shownName, const GridTable &grid)
      : _file(path, shownName), _grid(grid), _n(grid.geometry.getNodesNumber())
  {
  }

  void write()
  {
    _reference =
        _grid.crs.isEmpty() ? SpatialReference() : SpatialReference::parse(_grid.crs, _reason);
    _file.attribute(NC_GLOBAL, "Conventions", QStringLiteral("CF-1.8"));
    _file.attribute(NC_GLOBAL, "title", _grid.title);
    _file.attribute(NC_GLOBAL, "source", "orvenal " + programVersion());
    for (const GridTable::Column &column : _grid.columns)
      _columnNames << _names.take(column.name);
    _defineDimensions();
    _defineReference();
    _defineColumns();
    _file.check(nc_enddef(_file.id()));
    if (_grid.isTurned())
      _writeTurnedCoordinates();
    else
      _writeCoordinates();
    for (int i = 0; i < _columns.size(); ++i)
      _writeColumn(_columns[i], _grid.columns[i]);
    _file.close();
  }

private:
  bool _is3D() const { return !_grid.geometry.is2D(); }

  void _defineDimensions()
  {
    const bool isTurned = _grid.isTurned();
    const QString x = _names.take(QStringLiteral("x"));
    const QString y = _names.take(QStringLiteral("y"));
    const QString z = _names.take(QStringLiteral("z"));
    const int columns = _file.dimension(isTurned ? _names.take(QStringLiteral("i")) : x, _n.x());
    const int rows = _file.dimension(isTurned ? _names.take(QStringLiteral("j")) : y, _n.y());
    if (_is3D()) {
      _dimensions.push_back(_file.dimension(z, _n.z()));
      _z = _file.variable(z, NC_DOUBLE, _dimensions);
      _describeAxis(_z, "Z", QObject::tr("elevation"));
      _file.attribute(_z, "positive", QStringLiteral("up"));
    }
    const std::vector<int> plane = {rows, columns};
    _dimensions.insert(_dimensions.end(), plane.begin(), plane.end());
    _x = _file.variable(x, NC_DOUBLE, isTurned ? plane : std::vector<int>{columns});
    _y = _file.variable(y, NC_DOUBLE, isTurned ? plane : std::vector<int>{rows});
    _describeAxis(_x, isTurned ? nullptr : "X", QObject::tr("x coordinate"));
    _describeAxis(_y, isTurned ? nullptr : "Y", QObject::tr("y coordinate"));
    if (isTurned)
      _coordinates = y + ' ' + x;
  }

  void _describeAxis(int variable, const char *axis, const QString &label) const
  {
    _file.attribute(variable, "long_name", label);
    if (axis)
      _file.attribute(variable, "axis", QLatin1String(axis));
    const bool isPlane = variable != _z;
    if (isPlane && _reference.isGeographic()) {
      const bool isX = variable == _x;
      _file.attribute(variable, "standard_name", QLatin1String(isX ? "longitude" : "latitude"));
      _file.attribute(variable, "units", QLatin1String(isX ? "degrees_east" : "degrees_north"));
      return;
    }
    if (isPlane && _reference.isValid())
      _file.attribute(
          variable, "standard_name",
          QLatin1String(variable == _x ? "projection_x_coordinate" : "projection_y_coordinate"));
    _file.attribute(variable, "units", _grid.lengthUnit);
  }

  void _defineReference()
  {
    if (!_reference.isValid())
      return;
    _mapping = _names.take(QStringLiteral("crs"));
    const int variable = _file.variable(_mapping, NC_INT, {});
    const QString wkt = _reference.toWkt();
    if (_reference.isGeographic())
      _file.attribute(variable, "grid_mapping_name", QStringLiteral("latitude_longitude"));
    _file.attribute(variable, "long_name", _reference.getName());
    _file.attribute(variable, "crs_wkt", wkt);
    _file.attribute(variable, "spatial_ref", wkt);
  }

  void _defineColumns()
  {
    constexpr int isShuffled = 1;
    constexpr int isDeflated = 1;
    constexpr int level = 4;
    const std::vector<std::size_t> chunk = _chunk();
    for (int i = 0; i < _grid.columns.size(); ++i) {
      const int variable = _file.variable(_columnNames[i], NC_DOUBLE, _dimensions);
      _columns << variable;
      _file.check(nc_def_var_chunking(_file.id(), variable, NC_CHUNKED, chunk.data()));
      _file.check(nc_def_var_deflate(_file.id(), variable, isShuffled, isDeflated, level));
      _file.check(nc_def_var_fill(_file.id(), variable, NC_FILL, &fillValue));
      _file.attribute(variable, "long_name", _grid.columns[i].label);
      _file.attribute(variable, "units", _grid.columns[i].unit);
      _file.attribute(variable, "grid_mapping", _mapping);
      _file.attribute(variable, "coordinates", _coordinates);
    }
  }

  /// Whole rows, about a megabyte of them: what comes row by row never waits for another chunk.
  std::vector<std::size_t> _chunk() const
  {
    constexpr int nodesPerChunk = 1 << 17;
    const int columns = std::min(_n.x(), nodesPerChunk);
    const int rows = std::max(1, std::min(_n.y(), nodesPerChunk / columns));
    std::vector<std::size_t> chunk = {std::size_t(rows), std::size_t(columns)};
    if (_is3D())
      chunk.insert(chunk.begin(), 1);
    return chunk;
  }

  void _writeAxis(int variable, int axis) const
  {
    std::vector<double> places;
    for (int index = 0; index < _n[axis]; ++index) {
      NbgIntVector3D ijk(0, 0, 0);
      ijk[axis] = index;
      places.push_back(_grid.geometry.getCellCenter(ijk)[axis]);
    }
    _file.check(nc_put_var_double(_file.id(), variable, places.data()));
  }

  void _writeCoordinates() const
  {
    _writeAxis(_x, 0);
    _writeAxis(_y, 1);
    if (_is3D())
      _writeAxis(_z, 2);
  }

  void _writeTurnedCoordinates() const
  {
    std::vector<double> row(std::size_t(_n.x()));
    const std::size_t count[] = {1, row.size()};
    for (int j = 0; j < _n.y(); ++j) {
      Interruption::check();
      const std::size_t start[] = {std::size_t(j), 0};
      for (const int variable : {_x, _y}) {
        for (int i = 0; i < _n.x(); ++i)
          row[std::size_t(i)] = _grid.geometry.getCellCenter(i, j, 0)[variable == _x ? 0 : 1];
        _file.check(nc_put_vara_double(_file.id(), variable, start, count, row.data()));
      }
    }
    if (_is3D())
      _writeAxis(_z, 2);
  }

  void _writeColumn(int variable, const GridTable::Column &column) const
  {
    std::vector<double> row(std::size_t(_n.x()));
    const std::size_t skipped = _is3D() ? 0 : 1;  // a plane has no third index
    const std::size_t count[] = {1, 1, row.size()};
    for (int k = 0; k < _n.z(); ++k) {
      for (int j = 0; j < _n.y(); ++j) {
        Interruption::check();
        _grid.copyRow(column, j, k, row);
        for (double &value : row)
          value = NbbGlobal::isDefined(value) ? value : fillValue;
        const std::size_t start[] = {std::size_t(k), std::size_t(j), 0};
        _file.check(
            nc_put_vara_double(_file.id(), variable, start + skipped, count + skipped, row.data()));
      }
    }
  }

  NetcdfFile _file;
  const GridTable &_grid;
  NbgIntVector3D _n;
  SpatialReference _reference;
  QString _reason;
  Names _names;
  QStringList _columnNames;
  std::vector<int> _dimensions;
  int _x = -1;
  int _y = -1;
  int _z = -1;
  QString _coordinates;
  QString _mapping;
  QList<int> _columns;
};

}  // namespace

void prepareNetcdf()
{
  H5dont_atexit();
}

void writeNetcdf(const QString &path, const QString &shownName, const GridTable &grid)
{
  Writer(path, shownName, grid).write();
}

}  // namespace orvenal
