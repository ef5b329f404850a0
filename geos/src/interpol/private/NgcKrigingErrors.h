#pragma once

#include <QString>

class NbgVector3D;

/// What is reported of a target that could not be kriged. Each text ends with the location of the
/// target, and `note` when there is one.
namespace NgcKrigingErrors {

QString undefinedDrift(const NbgVector3D &target);
QString undefinedModel(const NbgVector3D &target);

/// `driftError`: what the system says of its drift; empty when it is singular.
QString unsolvedSystem(const QString &driftError, const NbgVector3D &target);
QString unsolvedCompanion(const NbgVector3D &target);

}  // namespace NgcKrigingErrors
