#include "TestFiles.h"
#include "app/io/NetcdfReader.h"
#include "basic/error/NbeUserError.h"

#include <gmock/gmock.h>

#include <netcdf.h>
#include <cmath>
#include <numeric>

using namespace orvenal;
using Numbers = std::vector<double>;

namespace {

/// A netCDF file in the making.
class NetcdfFile
{
public:
  explicit NetcdfFile(const QString &path)
  {
    EXPECT_EQ(nc_create(qPrintable(path), NC_CLOBBER | NC_NETCDF4, &_file), NC_NOERR);
  }
  ~NetcdfFile() { EXPECT_EQ(nc_close(_file), NC_NOERR); }
  NetcdfFile(const NetcdfFile &) = delete;
  NetcdfFile &operator=(const NetcdfFile &) = delete;

  int dimension(const char *name, std::size_t length) const
  {
    int id = -1;
    EXPECT_EQ(nc_def_dim(_file, name, length, &id), NC_NOERR);
    return id;
  }

  void variable(const char *name, const std::vector<int> &dimensions, const Numbers &values) const
  {
    int id = -1;
    EXPECT_EQ(nc_def_var(_file, name, NC_DOUBLE, int(dimensions.size()), dimensions.data(), &id),
              NC_NOERR);
    EXPECT_EQ(nc_put_var_double(_file, id, values.data()), NC_NOERR);
  }

private:
  int _file = -1;
};

std::unique_ptr<NetcdfReader> open(const QString &path)
{
  return NetcdfReader::tryOpen(path, "grid.nc", TableFormat());
}

Numbers ascending(int n, double first)
{
  Numbers values(std::size_t(n), 0.);
  std::iota(values.begin(), values.end(), first);
  return values;
}

}  // namespace

TEST(NetcdfReader, TakesAVariableNamedLikeAnAxisForOne)
{
  const apptest::Folder folder;
  {
    const NetcdfFile file(folder.path("grid.nc"));
    const int depth = file.dimension("depth", 2);
    const int north = file.dimension("north", 2);
    const int east = file.dimension("east", 3);
    file.variable("depth", {depth}, {-10., -5.});
    file.variable("north", {north}, {100., 200.});
    file.variable("east", {east}, {1., 2., 3.});
    file.variable("y", {depth, north, east}, ascending(12, 0.));
    file.variable("zinc", {depth, north, east}, ascending(12, 50.));
  }
  const auto reader = open(folder.path("grid.nc"));
  ASSERT_TRUE(reader);
  EXPECT_EQ(reader->getColumns(), QStringList({"x", "y", "z", "y (field)", "zinc"}));
  Numbers record;
  int n = 0;
  for (; reader->next(); ++n) {
    record.clear();
    for (int column = 0; column < 5; ++column)
      record.push_back(reader->getNumber(column));
    EXPECT_THAT(record, testing::ElementsAre(1. + n % 3, n / 3 % 2 == 0 ? 100. : 200.,
                                             n < 6 ? -10. : -5., n, 50. + n));
  }
  EXPECT_EQ(n, 12);
}

TEST(NetcdfReader, LeavesOtherLayoutsToOthers)
{
  const apptest::Folder folder;
  enum What { GOOD, GROWS, NOT_FINITE, NO_COORDINATES };
  for (const What what : {GOOD, GROWS, NOT_FINITE, NO_COORDINATES}) {
    {
      const NetcdfFile file(folder.path("grid.nc"));
      const int y = file.dimension("y", what == GROWS ? NC_UNLIMITED : 2);
      const int x = file.dimension("x", 2);
      if (what != NO_COORDINATES) {
        file.variable("y", {y}, {0., 1.});
        file.variable("x", {x}, {0., what == NOT_FINITE ? INFINITY : 1.});
      }
      file.variable("zinc", {y, x}, {1., 2., 3., 4.});
    }
    EXPECT_EQ(bool(open(folder.path("grid.nc"))), what == GOOD) << what;
  }
}

TEST(NetcdfReader, NamesTheRowOfAPlaceThatIsNone)
{
  const apptest::Folder folder;
  {
    const NetcdfFile file(folder.path("grid.nc"));
    const int j = file.dimension("j", 2);
    const int i = file.dimension("i", 2);
    file.variable("x", {j, i}, {0., 1., 0.5, 1.5});
    file.variable("y", {j, i}, {0., 0.5, 1., NAN});
    file.variable("zinc", {j, i}, {1., 2., 3., 4.});
  }
  const auto reader = open(folder.path("grid.nc"));
  ASSERT_TRUE(reader);
  EXPECT_TRUE(reader->next());
  EXPECT_TRUE(reader->next());
  try {
    reader->next();
    FAIL();
  } catch (const NbeUserError &error) {
    EXPECT_EQ(error.getMessage().toStdString(),
              "grid.nc, node (2, 2, 1): column 2 (\"y\"): the place is not a finite number");
  }
}
