#include "app/report/CrossValidationTable.h"

#include "app/io/TableWriter.h"
#include "app/study/CrossValidation.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"

namespace orvenal {

void writeCrossValidation(const QString &path, const QString &shownName,
                          const CrossValidation &validation, const Samples &samples, const Job &job)
{
  QStringList names = {"x", "y", "value", "estimate", "deviation", "error", "standardizedError"};
  QList<const std::vector<double> *> values = {&samples.x,
                                               &samples.y,
                                               &samples.value,
                                               &validation.estimate,
                                               &validation.deviation,
                                               &validation.error,
                                               &validation.standardizedError};
  TableLayout layout;
  layout.title = job.title;
  layout.crs = job.crs;
  if (!samples.z.empty()) {
    layout.z = 2;
    names.insert(layout.z, "z");
    values.insert(layout.z, &samples.z);
  }
  for (const QString &name : names)
    layout.columns << TableLayout::Column{name};
  const auto writer = TableWriter::create(path, shownName, layout);
  TableRecord record(layout.columns.size());
  for (std::size_t i = 0; i < samples.x.size(); ++i) {
    for (int column = 0; column < values.size(); ++column)
      record.numbers[std::size_t(column)] = (*values[column])[i];
    writer->add(record);
  }
  writer->finish();
}

}  // namespace orvenal
