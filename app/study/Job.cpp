#include "app/study/Job.h"

namespace orvenal {

QString JobVariable::getLabel() const
{
  return unit.isEmpty() ? name : QStringLiteral("%1 [%2]").arg(name, unit);
}

QStringList JobOutput::getFiles() const
{
  QStringList files = grids;
  for (const QString &file : {estimateMap, deviationMap, report}) {
    if (!file.isEmpty())
      files << file;
  }
  return files;
}

}  // namespace orvenal
