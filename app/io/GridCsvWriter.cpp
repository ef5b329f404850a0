#include "app/io/GridCsvWriter.h"

#include "app/console/Interruption.h"
#include "app/io/CsvText.h"
#include "app/study/GridResult.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QObject>

namespace orvenal {

namespace {

using CsvText::append;

constexpr int flushSize = 1 << 20;

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
  for (const GridResult::Extra &extra : result.extras) {
    lines += ',';
    append(lines, extra.values[std::size_t(rank)]);
  }
  lines += '\n';
}

QByteArray header(const GridResult &result)
{
  QByteArray names = result.geometry.is2D() ? "x,y" : "x,y,z";
  names += ",estimate,deviation,variance";
  for (const GridResult::Extra &extra : result.extras)
    names += ',' + extra.name.toUtf8();
  return names + '\n';
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
  QByteArray lines = header(result);
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
