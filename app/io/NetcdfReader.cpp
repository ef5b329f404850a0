#include "app/io/NetcdfReader.h"

#include "app/console/Interruption.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <netcdf.h>
#include <algorithm>
#include <cmath>
#include <limits>

namespace orvenal {

namespace {

constexpr std::size_t longestAxis = 1 << 24;
constexpr std::size_t largestRows = 1 << 26;  // values of a row of all variables

/// Dimensions of a variable; none for one that holds no numbers.
std::vector<int> dimensionsOf(int file, int variable)
{
  int n = 0;
  nc_type type = NC_NAT;
  if (nc_inq_varndims(file, variable, &n) != NC_NOERR ||
      nc_inq_vartype(file, variable, &type) != NC_NOERR || type == NC_CHAR || type > NC_UINT64)
    return {};
  std::vector<int> dimensions(std::size_t(std::max(n, 0)));
  nc_inq_vardimid(file, variable, dimensions.data());
  return dimensions;
}

/// Whether a dimension may grow. Variables over it need not reach its end.
bool isUnlimited(int file, int dimension)
{
  int n = 0;
  nc_inq_unlimdims(file, &n, nullptr);
  std::vector<int> unlimited(std::size_t(std::max(n, 0)));
  nc_inq_unlimdims(file, nullptr, unlimited.data());
  return std::find(unlimited.begin(), unlimited.end(), dimension) != unlimited.end();
}

/// How many places there are before one that is not finite.
std::size_t countFinite(const std::vector<double> &places)
{
  const auto isFinite = [](double x) { return std::isfinite(x); };
  return std::size_t(std::find_if_not(places.begin(), places.end(), isFinite) - places.begin());
}

QString nameOf(int file, int variable)
{
  char name[NC_MAX_NAME + 1] = {};
  nc_inq_varname(file, variable, name);
  return QString::fromUtf8(name);
}

}  // namespace

std::unique_ptr<NetcdfReader> NetcdfReader::tryOpen(const QString &path, const QString &shownName,
                                                    const TableFormat &format)
{
  if (!format.layer.isEmpty() ||
      QFileInfo(path).suffix().compare(QLatin1String("nc"), Qt::CaseInsensitive) != 0)
    return nullptr;
  std::unique_ptr<NetcdfReader> reader(new NetcdfReader(shownName, format));
  return reader->_open(path) ? std::move(reader) : nullptr;
}

NetcdfReader::NetcdfReader(const QString &shownName, const TableFormat &format)
    : TableReader(shownName), _format(format), _parser(format)
{
  _format.kind = TableFormat::GDAL;
}

NetcdfReader::~NetcdfReader()
{
  if (_file >= 0)
    nc_close(_file);
}

QString NetcdfReader::getFormatName() const
{
  return QObject::tr("netCDF, grid");
}

bool NetcdfReader::_open(const QString &path)
{
  int file = -1;
  if (nc_open(QFile::encodeName(path).constData(), NC_NOWRITE, &file) != NC_NOERR)
    return false;
  _file = file;
  return _findVariables() && _findCoordinates() && _readReference();
}

/// The grid is that of the first variable of several dimensions which is no coordinate.
bool NetcdfReader::_findVariables()
{
  int nVariables = 0;
  nc_inq_nvars(_file, &nVariables);
  QStringList coordinates;
  for (int id = 0; id < nVariables; ++id)
    coordinates << _attribute(id, "coordinates").split(' ', Qt::SkipEmptyParts);
  for (int id = 0; id < nVariables; ++id) {
    const std::vector<int> dimensions = dimensionsOf(_file, id);
    const QString name = nameOf(_file, id);
    if (dimensions.size() < 2 || coordinates.contains(name))
      continue;
    if (_dimensions.empty())
      _dimensions = dimensions;
    if (dimensions != _dimensions || dimensions.size() > 3 || !_addVariable(id, name))
      return false;
  }
  return !_variables.empty();
}

bool NetcdfReader::_addVariable(int id, const QString &name)
{
  for (const char *packing : {"scale_factor", "add_offset", "missing_value"}) {
    if (nc_inq_attid(_file, id, packing, nullptr) == NC_NOERR)
      return false;
  }
  double fill = std::numeric_limits<double>::quiet_NaN();
  std::size_t nFills = 0;
  if (nc_inq_attlen(_file, id, "_FillValue", &nFills) == NC_NOERR &&
      (nFills != 1 || nc_get_att_double(_file, id, "_FillValue", &fill) != NC_NOERR))
    return false;
  _variables.push_back({id, fill, {}});
  _setColumns(QStringList(getColumns()) << name);
  return true;
}

bool NetcdfReader::_findCoordinates()
{
  for (const int dimension : _dimensions) {
    std::size_t length = 0;
    if (nc_inq_dimlen(_file, dimension, &length) != NC_NOERR || length < 1 ||
        length > longestAxis || isUnlimited(_file, dimension))
      return false;
    _length.push_back(length);
  }
  if (_length.back() * _variables.size() > largestRows)
    return false;
  const std::size_t n = _dimensions.size();
  QStringList names = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
  if (n == 3 && !_readAxis(_dimensions[0], _axes[2]))
    return false;
  const std::vector<int> plane(_dimensions.end() - 2, _dimensions.end());
  const bool isTurned = nc_inq_varid(_file, "x", &_turned[0]) == NC_NOERR &&
                        nc_inq_varid(_file, "y", &_turned[1]) == NC_NOERR &&
                        dimensionsOf(_file, _turned[0]) == plane &&
                        dimensionsOf(_file, _turned[1]) == plane;
  if (isTurned) {
    for (int axis = 0; axis < 2; ++axis)
      _axes[axis].resize(_length.back());
  } else {
    _turned[0] = _turned[1] = -1;
    if (!_readAxis(_dimensions[n - 1], _axes[0]) || !_readAxis(_dimensions[n - 2], _axes[1]))
      return false;
  }
  const QStringList taken = names.mid(0, int(n));
  QStringList columns = taken;
  for (const QString &name : getColumns())
    columns << fieldName(name, taken);
  _setColumns(columns);
  for (Variable &variable : _variables)
    variable.row.resize(_length.back());
  return true;
}

/// The coordinate variable of a dimension.
bool NetcdfReader::_readAxis(int dimension, std::vector<double> &places) const
{
  char name[NC_MAX_NAME + 1] = {};
  int variable = -1;
  std::size_t length = 0;
  if (nc_inq_dim(_file, dimension, name, &length) != NC_NOERR ||
      nc_inq_varid(_file, name, &variable) != NC_NOERR ||
      dimensionsOf(_file, variable) != std::vector<int>{dimension})
    return false;
  places.resize(length);
  return nc_get_var_double(_file, variable, places.data()) == NC_NOERR &&
         countFinite(places) == length;
}

bool NetcdfReader::_readReference()
{
  const QString mapping = _attribute(_variables.front().id, "grid_mapping");
  if (mapping.isEmpty())
    return true;
  int variable = -1;
  if (nc_inq_varid(_file, mapping.toUtf8().constData(), &variable) != NC_NOERR)
    return false;
  _reference = _attribute(variable, "crs_wkt");
  return !_reference.isEmpty();
}

/// A text; empty when there is none.
QString NetcdfReader::_attribute(int variable, const char *name) const
{
  constexpr std::size_t longest = 1 << 20;
  nc_type type = NC_NAT;
  std::size_t length = 0;
  if (nc_inq_att(_file, variable, name, &type, &length) != NC_NOERR || type != NC_CHAR ||
      length > longest)
    return QString();
  QByteArray text(int(length), '\0');
  return nc_get_att_text(_file, variable, name, text.data()) == NC_NOERR ? QString::fromUtf8(text)
                                                                         : QString();
}

bool NetcdfReader::next()
{
  const std::size_t nRows = _length[_length.size() - 2];
  const std::size_t nLayers = _length.size() > 2 ? _length[0] : 1;
  do {
    if (!_hasRow) {
      _readRow();
    } else if (++_i == _length.back()) {
      if (++_j == nRows) {
        _j = 0;
        ++_k;
      }
      if (_k == nLayers) {
        --_i;  // the record stays the last one
        return false;
      }
      _readRow();
    }
  } while (std::all_of(_variables.begin(), _variables.end(),
                       [this](const Variable &variable) { return std::isnan(variable.row[_i]); }));
  return true;
}

void NetcdfReader::_readRow()
{
  Interruption::check();
  _hasRow = true;
  _i = 0;
  for (Variable &variable : _variables) {
    _read(variable.id, variable.row.data());
    for (double &value : variable.row)
      value = value == variable.fill ? std::numeric_limits<double>::quiet_NaN() : value;
  }
  for (int axis = 0; axis < 2 && _turned[0] >= 0; ++axis) {
    _read(_turned[axis], _axes[axis].data());
    _i = countFinite(_axes[axis]);
    if (_i < _axes[axis].size())
      fail(axis, QObject::tr("the place is not a finite number"));
    _i = 0;
  }
}

/// A row of a variable; those of the plane have no layers.
void NetcdfReader::_read(int variable, double *row) const
{
  const bool hasLayers = _length.size() > 2 && variable != _turned[0] && variable != _turned[1];
  const std::size_t start[] = {_k, _j, 0};
  const std::size_t count[] = {1, 1, _length.back()};
  const int skipped = hasLayers ? 0 : 1;
  const int status = nc_get_vara_double(_file, variable, start + skipped, count + skipped, row);
  if (status != NC_NOERR)
    throw NbeUserError(QObject::tr("%1: cannot be read: %2")
                           .arg(_getShownName(), QString::fromLatin1(nc_strerror(status))));
}

double NetcdfReader::_getCoordinate(int axis) const
{
  const std::size_t index = axis == 0 || _turned[0] >= 0 ? _i : _j;
  return axis == 2 ? _axes[2][_k] : _axes[axis][index];
}

double NetcdfReader::_getValue(int column) const
{
  return _variables[std::size_t(column - _getNAxes())].row[_i];
}

TableReader::Field NetcdfReader::classify(int column, double &number) const
{
  if (column < _getNAxes()) {
    number = _getCoordinate(column);
    return NUMBER;
  }
  return std::isnan(_getValue(column)) ? UNDEFINED : _parser.classify(_getValue(column), number);
}

double NetcdfReader::getNumber(int column) const
{
  if (column < _getNAxes())
    return _getCoordinate(column);
  return std::isnan(_getValue(column)) ? NbbGlobal::D_FFFF
                                       : _parser.read(_getValue(column), *this, column);
}

QString NetcdfReader::getText(int column) const
{
  double number = 0.;
  return classify(column, number) == NUMBER ? QString::number(number, 'g', 17) : QString();
}

QString NetcdfReader::_getPlace() const
{
  return QObject::tr("node (%1, %2, %3)").arg(_i + 1).arg(_j + 1).arg(_k + 1);
}

QString NetcdfReader::_getHeaderPlace() const
{
  return QObject::tr("variables");
}

}  // namespace orvenal
