#pragma once

#include <QByteArray>
#include <QStringList>

class NgmVModel;

namespace orvenal {

class JobObject;

/// Keys of the model of a job.
QStringList modelKeys();

/// The model that is alone in a file, with the conventions that the file names.
JobObject parseModelText(const QString &file, const QByteArray &text);

/// The variogram model of the variables; with several of them nugget and sills are matrices. A
/// model that is not admissible is a UsageError.
NgmVModel readModel(const JobObject &model, int nDimensions, int nVariables);

struct FitRequest;

QStringList fitKeys();

/// What to fit; the structures by default are one spherical one.
FitRequest readFit(const JobObject &object);

/// Labels of the structures of models, and of those that can be fitted.
QStringList structureLabels();
QStringList fittedLabels();

}  // namespace orvenal
