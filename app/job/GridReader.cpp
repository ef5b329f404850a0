#include "app/job/GridReader.h"

#include "app/job/DataReader.h"
#include "app/job/JobObject.h"
#include "app/study/Compass.h"

#include <QDir>
#include <QObject>

#include <climits>

namespace orvenal {

namespace {

void checkSize(const JobObject &object, const NbgGeomGrid &grid)
{
  // The results of a run are held in memory.
  constexpr qint64 mostNodes = INT_MAX;
  const qint64 nodes = grid.getGridSize();
  if (nodes < 1 || nodes > mostNodes)
    object.fail(key("nodes"),
                QObject::tr("the grid has too many nodes (at most %1)").arg(mostNodes));
}

NbgGeomGrid readGeometry(const JobObject &object)
{
  constexpr int mostNodesPerAxis = 1 << 24;
  const std::vector<int> nodes = object.integers(key("nodes"), 2, 3, 1, mostNodesPerAxis);
  const int n = int(nodes.size());
  const std::vector<double> origin = object.numbers(key("origin"), n, n);
  const std::vector<double> cell = object.numbers(key("cell"), n, n, 0., JobObject::EXCLUDED);
  NbgGeomGrid grid;
  if (n == 2)
    grid.setNodesNumber2D(nodes[0], nodes[1]);
  else
    grid.setNodesNumber(nodes[0], nodes[1], nodes[2]);
  grid.setOriginCentered({origin[0], origin[1], n > 2 ? origin[2] : 0.});
  grid.setCellSize({cell[0], cell[1], n > 2 ? cell[2] : 1.});
  if (object.has(key("rotation")))
    grid.setRotation(Compass::gridFrame(
        Compass::toAzimuthOfRows(object.number(key("rotation")), object.getConventions().angles)));
  checkSize(object, grid);
  return grid;
}

void checkDimension(const JobTable &table, const JobObject &root, const NbgGeomGrid &grid)
{
  if (!grid.is2D() && table.z.isEmpty())
    root.fail(table.path + ".z", QObject::tr("missing; the grid has three dimensions"));
  if (grid.is2D() && !table.z.isEmpty())
    root.fail(table.path + ".z",
              QObject::tr("the grid has two dimensions; give \"nodes\", \"cell\" and \"origin\" "
                          "three values, or leave z out"));
}

}  // namespace

void readGrid(const JobObject &root, const QDir &folder, Job &job)
{
  const JobObject object = root.object(key("grid"), {key("origin"), key("cell"), key("nodes"),
                                                     key("rotation"), key("mask"), key("values")});
  job.grid = readGeometry(object);
  job.hasGrid = true;
  checkDimension(job.data, root, job.grid);
  if (object.has(key("mask"))) {
    job.mask = readTable(object.object(key("mask"), tableKeys()), folder);
    checkDimension(*job.mask, root, job.grid);
  }
  if (object.has(key("values"))) {
    job.gridValues = readTable(object.object(key("values"), tableKeys()), folder);
    checkDimension(*job.gridValues, root, job.grid);
  }
}

}  // namespace orvenal
