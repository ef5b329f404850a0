#pragma once

#include "geos/data/NgdDataSetPoints.h"

#include <QList>
#include <QSharedPointer>
#include <QString>

class NbpIProviderR;
class NbpMemoryProviderPointsW;
class NgcAKriging;

namespace orvenal {

struct Column;
struct Job;
struct NeighborhoodRequest;

/// What estimation and cross-validation have in common: the samples with all that a job reads of
/// them, bound to their roles, and the settings of its variant of kriging.
NgdDataSetPoints makeSampleDataSet(const Job &job,
                                   const QSharedPointer<NbpMemoryProviderPointsW> &samples);

/// Binds auxiliary columns of a file to a role.
void assignColumns(NgdADataSet &dataSet, const QString &role, const NbpIProviderR &file,
                   const QList<Column> &columns);

/// Model, mode, means, drifts and measurement errors; only the first variable is estimated.
void configureKriging(NgcAKriging &kriging, const Job &job);

/// A moving neighborhood with its passes.
void configureNeighborhood(NgcAKriging &kriging, const NeighborhoodRequest &request);

}  // namespace orvenal
