#include "app/study/CrossValidation.h"

#include "app/study/Job.h"
#include "app/study/KrigingSetup.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeUserError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcCrossValidation.h"
#include "geos/interpol/NgmSearchPartition.h"

#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

/// The samples as a file that takes the results too.
struct ValidationFile
{
  QSharedPointer<NbpMemoryProviderPointsW> provider;
  QString estimate;
  QString deviation;
  QString error;
  QString standardizedError;
  QString squaredError;  ///< both squares are there for their means
  QString squaredStandardizedError;

  explicit ValidationFile(const Samples &samples) : provider(makeProvider(samples))
  {
    const auto add = [this](const char *name) {
      return provider->addEmptyVariableSimple(QLatin1String(name), Nbd::TYPE_DOUBLE);
    };
    estimate = add("estimate");
    deviation = add("deviation");
    error = add("error");
    standardizedError = add("standardized error");
    squaredError = add("squared error");
    squaredStandardizedError = add("squared standardized error");
  }

  std::vector<double> read(const QString &id) const
  {
    const auto all = NbiIntervalIntLarge::fromLength(provider->getSampleCount());
    NbdVariableDouble values;
    values.resizeAndFill(int(all.getLength()));
    if (!provider->readVariable(id, all, values, 0))
      throw NbeUserError(provider->getLastError());
    return values.getVector();
  }
};

NgdDataSetPoints makeInput(const Job &job, const ValidationFile &file)
{
  NgdDataSetPoints input = makeSampleDataSet(job, file.provider);
  if (job.crossValidation->leaveOut == CrossValidationRequest::LINE)
    input.assignVariable(Nbd::Role::OBJECT_ID,
                         file.provider->getIdFromName(lineName(job.crossValidation->line)));
  return input;
}

NgdDataSetPoints makeOutput(const Job &job, const ValidationFile &file)
{
  NgdDataSetPoints output;
  output.setDataProvider(file.provider);
  output.assignVariable(Nbd::Role::V, file.estimate);
  output.assignVariable(Nbd::Role::STDEV, file.deviation);
  output.assignVariable(Nbd::Role::XVAL_ERR, file.error);
  output.assignVariable(Nbd::Role::XVAL_ST_ERR, file.standardizedError);
  output.assignVariable(Nbd::Role::XVAL_SQ_ERR, file.squaredError);
  output.assignVariable(Nbd::Role::XVAL_SQ_ST_ERR, file.squaredStandardizedError);
  assignColumns(output, Nbd::Role::EXTDRIFT, *file.provider, job.kriging.externalDrifts);
  assignColumns(output, Nbd::Role::LOCAL_MEAN, *file.provider, job.kriging.localMeans);
  return output;
}

/// All samples, wherever the target is.
NeighborhoodRequest everything(const Samples &samples)
{
  const double radius = 2. * std::max(samples.getDiagonal(), 1.);
  NeighborhoodRequest neighborhood;
  neighborhood.moving.setEllipseSize(NbgVector3D(radius, radius, radius));
  neighborhood.moving.setSectors(1, int(samples.getCount()), false);
  return neighborhood;
}

void setRejection(NgcCrossValidation &validation, const CrossValidationRequest &request)
{
  if (request.leaveOut == CrossValidationRequest::LINE) {
    validation.setRejectionMode(NgcERejectionMode::REJECTION_BY_LINE);
  } else if (request.leaveOut == CrossValidationRequest::BALL) {
    NgmSearchPartition ball;
    ball.setShape(NgcESolidShape::SHAPE_ELLIPSOID);
    ball.setEllipsoidSize(NbgVector3D(request.radius, request.radius, request.radius));
    validation.setRejectionMode(NgcERejectionMode::REJECTION_BY_PARTITION);
    validation.setRejectionPartition(ball);
  } else {
    validation.setRejectionMode(NgcERejectionMode::REJECTION_BY_TARGET);
  }
}

}  // namespace

qint64 CrossValidation::getNEstimated() const
{
  return std::count_if(error.begin(), error.end(),
                       [](double value) { return NbbGlobal::isDefined(value); });
}

CrossValidation crossValidate(const Job &job, const Samples &samples, const RunContext &context)
{
  const ValidationFile file(samples);
  NgcCrossValidation validation(QStringLiteral("CROSS_VALIDATION"));
  validation.setInputDataSet(makeInput(job, file));
  validation.setOutputDataSet(makeOutput(job, file));
  configureKriging(validation, job);
  configureNeighborhood(validation, job.neighborhood ? *job.neighborhood : everything(samples));
  setRejection(validation, *job.crossValidation);
  context.run(validation, QObject::tr("Cross-validation"), samples.getCount(),
              QObject::tr("samples"));

  CrossValidation result;
  result.estimate = file.read(file.estimate);
  result.deviation = file.read(file.deviation);
  result.error = file.read(file.error);
  result.standardizedError = file.read(file.standardizedError);
  result.means = validation.getResults();
  result.nFailures = validation.getNumberOfInterpolErrors();
  result.failures = validation.getInterpolErrorsMessage().trimmed();
  return result;
}

}  // namespace orvenal
