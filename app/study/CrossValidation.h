#pragma once

#include "geos/interpol/XValRes.h"

#include <QSharedPointer>
#include <QString>

#include <vector>

class NbpMemoryProviderPointsW;

namespace orvenal {

struct Job;
struct RunContext;
struct Samples;

/// How a job wants its model and neighborhood to be tested.
struct CrossValidationRequest
{
  enum LeaveOut { SAMPLE, LINE, BALL };

  LeaveOut leaveOut = SAMPLE;
  QString line;        ///< column with the numbers of lines
  double radius = 0.;  ///< of the ball around the sample
};

/// What kriging each sample from the others gave, by sample; undefined where there is no value or
/// it could not be estimated.
struct CrossValidation
{
  std::vector<double> estimate;
  std::vector<double> deviation;
  std::vector<double> error;              ///< estimate less value
  std::vector<double> standardizedError;  ///< in units of the deviation
  XValRes means;
  qint64 nFailures = 0;  ///< samples whose system could not be solved
  QString failures;      ///< a text on the first of them

  bool isEmpty() const { return estimate.empty(); }
  qint64 getNEstimated() const;
};

/// Kriges every sample as the job says, with what it names left out around the sample. A unique
/// neighborhood holds all other samples.
CrossValidation crossValidate(const Job &job, const Samples &samples, const RunContext &context);

}  // namespace orvenal
