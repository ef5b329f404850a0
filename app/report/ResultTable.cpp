#include "app/report/ResultTable.h"

#include "app/report/Describe.h"
#include "app/study/GridResult.h"
#include "app/study/Job.h"

#include <QObject>

namespace orvenal {

GridTable gridTableOf(const Job &job, const GridResult &result)
{
  const QString unit = job.variable.unit;
  const QString squared = unit.isEmpty() ? unit : QStringLiteral("(%1)^2").arg(unit);
  GridTable table;
  table.geometry = result.geometry;
  table.selected = &result.selected;
  table.title = job.title;
  table.crs = job.crs;
  table.lengthUnit = job.lengthUnit;
  table.columns = {
      {QStringLiteral("estimate"), Describe::estimateLabel(job), unit, &result.estimate},
      {QStringLiteral("deviation"), Describe::deviationLabel(job), unit, &result.deviation},
      {QStringLiteral("variance"), QObject::tr("variance of the estimation error"), squared,
       &result.variance}};
  for (const GridResult::Extra &extra : result.extras)
    table.columns << GridTable::Column{extra.name, extra.label, QString(), &extra.values};
  return table;
}

}  // namespace orvenal
