#include "app/io/TableWriter.h"

#include "app/io/CsvTableWriter.h"
#include "app/io/GeoEasTableWriter.h"
#include "app/io/GeoPackageTableWriter.h"

#include <QFileInfo>

namespace orvenal {

double TableLayout::markBelow(double minimum)
{
  double mark = -999.;
  while (!(minimum > mark))
    mark = 10. * mark - 9.;
  return mark;
}

QStringList TableWriter::endings()
{
  return {QStringLiteral("csv"), QStringLiteral("dat"), QStringLiteral("gpkg")};
}

std::unique_ptr<TableWriter> TableWriter::create(const QString &path, const QString &shownName,
                                                 const TableLayout &layout)
{
  const QString ending = QFileInfo(shownName).suffix().toLower();
  if (ending == QLatin1String("gpkg"))
    return std::make_unique<GeoPackageTableWriter>(path, shownName, layout);
  if (ending == QLatin1String("dat"))
    return std::make_unique<GeoEasTableWriter>(path, shownName, layout);
  return std::make_unique<CsvTableWriter>(path, shownName, layout);
}

}  // namespace orvenal
