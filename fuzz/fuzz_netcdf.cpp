#include "app/io/NetcdfReader.h"
#include "fuzz/FuzzTable.h"

#include <QString>

#include <fuzzer/FuzzedDataProvider.h>
#include <netcdf.h>
#include <unistd.h>
#include <limits>
#include <vector>

namespace {

/// Makes up files of the classic format and of the one on HDF5: dimensions, variables, types,
/// attributes and values that the library accepts, whether or not they make a grid.
class MadeUpFile
{
public:
  MadeUpFile(FuzzedDataProvider &input, const QByteArray &path) : _input(input)
  {
    const int formats[] = {NC_64BIT_OFFSET, NC_64BIT_DATA, NC_NETCDF4};
    if (nc_create(path.constData(), NC_CLOBBER | input.PickValueInArray(formats), &_file) !=
        NC_NOERR)
      return;
    _addDimensions();
    while (input.remaining_bytes() > 0 && _variables.size() < 8)
      _addVariable();
    nc_enddef(_file);
    for (const int variable : _variables)
      _fill(variable);
    nc_close(_file);
  }

private:
  std::string _name()
  {
    const char *const names[] = {"x", "y", "z", "zinc", "crs", "x y", "lat"};
    return _input.ConsumeBool() ? _input.PickValueInArray(names)
                                : _input.ConsumeRandomLengthString(8);
  }

  void _addDimensions()
  {
    const int n = _input.ConsumeIntegralInRange(0, 4);
    for (int i = 0; i < n; ++i) {
      int dimension = -1;
      const std::size_t length = _input.ConsumeIntegralInRange<std::size_t>(0, 9);
      if (nc_def_dim(_file, _name().c_str(), length, &dimension) == NC_NOERR)
        _dimensions.push_back(dimension);
    }
  }

  void _addVariable()
  {
    std::vector<int> dimensions;
    const int n = _dimensions.empty() ? 0 : _input.ConsumeIntegralInRange(0, 4);
    for (int i = 0; i < n; ++i)
      dimensions.push_back(
          _dimensions[_input.ConsumeIntegral<unsigned char>() % _dimensions.size()]);
    const nc_type types[] = {NC_DOUBLE, NC_FLOAT, NC_INT, NC_BYTE, NC_CHAR, NC_STRING, NC_UINT64};
    int variable = -1;
    if (nc_def_var(_file, _name().c_str(), _input.PickValueInArray(types), n, dimensions.data(),
                   &variable) != NC_NOERR)
      return;
    _variables.push_back(variable);
    while (_input.ConsumeBool())
      _addAttribute(variable);
  }

  void _addAttribute(int variable)
  {
    const char *const names[] = {"_FillValue",    "coordinates",  "grid_mapping", "crs_wkt",
                                 "missing_value", "scale_factor", "units"};
    const char *const name = _input.PickValueInArray(names);
    if (_input.ConsumeBool()) {
      const std::string text = _name();
      nc_put_att_text(_file, variable, name, text.size(), text.data());
      return;
    }
    std::vector<double> numbers(_input.ConsumeIntegralInRange<std::size_t>(0, 40), 7.);
    nc_type type = NC_DOUBLE;
    nc_inq_vartype(_file, variable, &type);
    nc_put_att_double(_file, variable, name, type, numbers.size(), numbers.data());
  }

  void _fill(int variable)
  {
    const double special[] = {0.,
                              7.,
                              -1.,
                              1e300,
                              std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity()};
    std::vector<double> values(9 * 9 * 9 * 9);
    for (double &value : values)
      value = _input.PickValueInArray(special);
    nc_put_var_double(_file, variable, values.data());
  }

  FuzzedDataProvider &_input;
  int _file = -1;
  std::vector<int> _dimensions;
  std::vector<int> _variables;
};

void read(const QString &path)
{
  try {
    const auto reader = orvenal::NetcdfReader::tryOpen(path, QStringLiteral("grid"), {});
    if (reader)
      orvenal::readRecords(*reader);
  } catch (const NbeUserError &) {
  }
}

}  // namespace

/// A netCDF file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  static const QByteArray path = "/dev/shm/orvenal-fuzz-" + QByteArray::number(getpid()) + ".nc";
  FuzzedDataProvider input(data, size);
  const MadeUpFile file(input, path);
  read(QString::fromUtf8(path));
  unlink(path.constData());
  return 0;
}
