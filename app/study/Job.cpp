#include "app/study/Job.h"

#include <utility>

namespace orvenal {

QString JobVariable::getLabel() const
{
  return unit.isEmpty() ? name : QStringLiteral("%1 [%2]").arg(name, unit);
}

QStringList JobOutput::getFiles() const
{
  QStringList files;
  for (const auto &[place, file] : getPlacedFiles())
    files << file;
  return files;
}

QList<QPair<QString, QString>> JobOutput::getPlacedFiles() const
{
  QList<QPair<QString, QString>> files;
  for (int i = 0; i < grids.size(); ++i)
    files.append({QStringLiteral("output.grid[%1]").arg(i), grids[i]});
  const std::pair<const char *, QString> others[] = {
      {"output.data.map", dataMap},
      {"output.data.histogram", dataHistogram},
      {"output.variogram.table", variogramTable},
      {"output.variogram.picture", variogramPicture},
      {"output.variogram.map", variogramMap},
      {"output.variogram.cloud", variogramCloud},
      {"output.fit.model", fittedModel},
      {"output.crossValidation.table", crossValidationTable},
      {"output.crossValidation.picture", crossValidationPicture},
      {"output.crossValidation.map", crossValidationMap},
      {"output.maps.estimate", estimateMap},
      {"output.maps.deviation", deviationMap},
      {"output.report", report},
      {"output.results", results}};
  for (const auto &[place, file] : others) {
    if (!file.isEmpty())
      files.append({QLatin1String(place), file});
  }
  return files;
}

Steps Job::getSteps() const
{
  Steps steps = {Step::STATISTICS};
  if (variogram)
    steps.insert(Step::VARIOGRAM);
  if (fit)
    steps.insert(Step::FIT);
  if (crossValidation)
    steps.insert(Step::CROSS_VALIDATION);
  if (hasGrid)
    steps.insert(Step::KRIGING);
  if (!output.report.isEmpty() || !output.results.isEmpty())
    steps.insert(Step::REPORT);
  return steps;
}

QStringList Job::getLineColumns() const
{
  QStringList columns;
  if (crossValidation && !crossValidation->line.isEmpty())
    columns << crossValidation->line;
  if (neighborhood && !neighborhood->line.isEmpty() && !columns.contains(neighborhood->line))
    columns << neighborhood->line;
  return columns;
}

void Job::keepOutputsOf(const Steps &steps)
{
  JobOutput kept;
  kept.overwrite = output.overwrite;
  if (steps.count(Step::STATISTICS)) {
    kept.dataMap = output.dataMap;
    kept.dataHistogram = output.dataHistogram;
  }
  if (steps.count(Step::VARIOGRAM)) {
    kept.variogramTable = output.variogramTable;
    kept.variogramPicture = output.variogramPicture;
    kept.variogramMap = output.variogramMap;
    kept.variogramCloud = output.variogramCloud;
  }
  if (steps.count(Step::FIT))
    kept.fittedModel = output.fittedModel;
  if (steps.count(Step::CROSS_VALIDATION)) {
    kept.crossValidationTable = output.crossValidationTable;
    kept.crossValidationPicture = output.crossValidationPicture;
    kept.crossValidationMap = output.crossValidationMap;
  }
  if (steps.count(Step::KRIGING)) {
    kept.grids = output.grids;
    kept.estimateMap = output.estimateMap;
    kept.deviationMap = output.deviationMap;
    kept.sections = output.sections;
  }
  if (steps.count(Step::REPORT)) {
    kept.report = output.report;
    kept.results = output.results;
  }
  output = kept;
}

}  // namespace orvenal
