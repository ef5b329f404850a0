#include "app/io/VariogramCsvWriter.h"

#include "app/io/CsvText.h"
#include "app/study/Compass.h"
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

}  // namespace

QByteArray variogramCsv(const Variography &variography)
{
  QByteArray lines = "direction,azimuth,dip,distance,pairs,value\n";
  for (const VariogramCurve &curve : variography.curves) {
    for (int lag = 0; lag < curve.distances.size(); ++lag)
      lines += directionFields(curve) + ',' + exact(curve.distances[lag]) + ',' +
               QByteArray::number(curve.pairs[lag]) + ',' + exact(curve.values[lag]) + '\n';
  }
  return lines;
}

}  // namespace orvenal
