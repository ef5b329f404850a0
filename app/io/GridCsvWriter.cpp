#include "app/io/GridCsvWriter.h"

#include "app/console/Interruption.h"
#include "app/study/GridResult.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QObject>

#include <charconv>

namespace orvenal {

namespace {

constexpr int flushSize = 1 << 20;

void append(QByteArray &line, double value)
{
  if (!NbbGlobal::isDefined(value))
    return;
  char digits[32];
  const std::to_chars_result result = std::to_chars(digits, digits + sizeof(digits), value);
  line.append(digits, int(result.ptr - digits));
}

void appendNode(QByteArray &lines, const GridResult &result, qint64 rank, const NbgVector3D &center)
{
  append(lines, center.x());
  lines += ',';
  append(lines, center.y());
  if (!result.geometry.is2D()) {
    lines += ',';
    append(lines, center.z());
  }
  for (const std::vector<double> *values :
       {&result.estimate, &result.deviation, &result.variance}) {
    lines += ',';
    append(lines, (*values)[std::size_t(rank)]);
  }
  lines += '\n';
}

void flush(QFile &file, const QString &shownName, QByteArray &lines)
{
  Interruption::check();
  if (file.write(lines) != lines.size() || !file.flush())
    throw NbeUserError(QObject::tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
  lines.clear();
}

}  // namespace

void writeGridCsv(const QString &path, const QString &shownName, const GridResult &result)
{
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
    throw NbeUserError(QObject::tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
  const NbgGeomGrid &grid = result.geometry;
  const NbgIntVector3D n = grid.getNodesNumber();
  QByteArray lines =
      grid.is2D() ? "x,y,estimate,deviation,variance\n" : "x,y,z,estimate,deviation,variance\n";
  for (int k = 0; k < n.z(); ++k) {
    for (int j = 0; j < n.y(); ++j) {
      for (int i = 0; i < n.x(); ++i) {
        const qint64 rank = grid.getRankFromIJK(i, j, k);
        if (result.selected[std::size_t(rank)])
          appendNode(lines, result, rank, grid.getCellCenter(i, j, k));
      }
      if (lines.size() > flushSize)
        flush(file, shownName, lines);
    }
  }
  flush(file, shownName, lines);
}

}  // namespace orvenal
