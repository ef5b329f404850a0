#include "app/io/CrossValidationCsvWriter.h"

#include "app/io/CsvText.h"
#include "app/study/CrossValidation.h"
#include "app/study/Samples.h"

namespace orvenal {

QByteArray crossValidationCsv(const CrossValidation &validation, const Samples &samples)
{
  const bool is3D = !samples.z.empty();
  QByteArray lines = is3D ? "x,y,z" : "x,y";
  lines += ",value,estimate,deviation,error,standardizedError\n";
  for (std::size_t i = 0; i < samples.x.size(); ++i) {
    CsvText::append(lines, samples.x[i]);
    for (const std::vector<double> *column :
         {&samples.y, &samples.z, &samples.value, &validation.estimate, &validation.deviation,
          &validation.error, &validation.standardizedError}) {
      if (column == &samples.z && !is3D)
        continue;
      lines += ',';
      CsvText::append(lines, (*column)[i]);
    }
    lines += '\n';
  }
  return lines;
}

}  // namespace orvenal
