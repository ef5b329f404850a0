#include "app/report/VariogramCsvWriter.h"

#include "app/io/CsvText.h"
#include "app/study/Compass.h"
#include "app/study/Job.h"
#include "app/study/Variography.h"

namespace orvenal {

namespace {

QByteArray exact(double value)
{
  QByteArray text;
  CsvText::append(text, value);
  return text;
}

QByteArray directionFields(const VariogramCurve &curve)
{
  const QByteArray name = CsvText::quoted(curve.name) + ',';
  if (curve.isOmnidirectional)
    return name + ',';
  return name + exact(Compass::azimuth(curve.direction)) + ',' +
         exact(Compass::dip(curve.direction));
}

void addLags(const VariogramCurve &curve, const QByteArray &variables, QByteArray &lines)
{
  for (int lag = 0; lag < curve.distances.size(); ++lag)
    lines += variables + directionFields(curve) + ',' + exact(curve.distances[lag]) + ',' +
             QByteArray::number(curve.pairs[lag]) + ',' + exact(curve.values[lag]) + '\n';
}

}  // namespace

QByteArray variogramCsv(const Variography &variography, const Job &job)
{
  const bool hasSeveral = variography.nVariables > 1;
  QByteArray lines = hasSeveral ? "variable1,variable2," : "";
  lines += "direction,azimuth,dip,distance,pairs,value\n";
  for (const VariogramSet &set : variography.sets) {
    const QByteArray variables = hasSeveral
                                     ? CsvText::quoted(job.getVariable(set.first).name) + ',' +
                                           CsvText::quoted(job.getVariable(set.second).name) + ','
                                     : QByteArray();
    for (const VariogramCurve &curve : set.curves)
      addLags(curve, variables, lines);
  }
  return lines;
}

}  // namespace orvenal
