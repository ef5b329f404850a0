#include "app/study/References.h"

#include "app/io/SpatialReference.h"
#include "app/study/Job.h"

#include <QObject>

#include <optional>

namespace orvenal {

namespace {

/// Empty when the file names none, or none that can be understood.
SpatialReference readReference(const JobTable &table)
{
  const QString text = TableReader::open(table.file, table.shown, table.format)->getReference();
  QString reason;
  return text.isEmpty() ? SpatialReference() : SpatialReference::parse(text, reason);
}

void adoptDataReference(Job &job, QStringList &warnings)
{
  const SpatialReference found = readReference(job.data);
  if (!found.isValid())
    return;
  QString reason;
  if (job.crs.isEmpty()) {
    job.crs = found.toText();
    if (job.lengthUnit.isEmpty())
      job.lengthUnit = found.getUnitSymbol();
  } else if (!found.isSame(SpatialReference::parse(job.crs, reason))) {
    warnings << QObject::tr("the coordinates of %1 are in %2, but the job says %3")
                    .arg(job.data.shown, SpatialReference::describe(found.toText()),
                         SpatialReference::describe(job.crs));
  }
}

void compareReference(const std::optional<JobTable> &table, const Job &job,
                      const SpatialReference &wanted, QStringList &warnings)
{
  if (!table)
    return;
  const SpatialReference found = readReference(*table);
  if (found.isValid() && !found.isSame(wanted))
    warnings << QObject::tr("the coordinates of %1 are in %2, those of the data in %3")
                    .arg(table->shown, SpatialReference::describe(found.toText()),
                         SpatialReference::describe(job.crs));
}

}  // namespace

QStringList adoptReferences(Job &job, bool withGrid)
{
  QStringList warnings;
  adoptDataReference(job, warnings);
  if (!withGrid || job.crs.isEmpty())
    return warnings;
  QString reason;
  const SpatialReference wanted = SpatialReference::parse(job.crs, reason);
  for (const std::optional<JobTable> *table : {&job.mask, &job.gridValues, &job.faults})
    compareReference(*table, job, wanted, warnings);
  return warnings;
}

}  // namespace orvenal
