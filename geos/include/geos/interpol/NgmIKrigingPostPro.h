#pragma once

#include "basic/data/Nbd.h"

#include <QList>
#include <QString>
#include <QStringList>

class NbdAData;
class NbdAVariableNumeric;

/// What turns the kriged values of a buffer of targets into further outputs of it.
///
/// Threads:  processing is const; workers share nothing but copies
class NgmIKrigingPostPro
{
public:
  virtual ~NgmIKrigingPostPro() = default;

  /// A new copy; the caller owns it.
  NgmIKrigingPostPro *clone() const { return _clone(); }

  /// The output roles that are written, and how many variables each of them takes.
  virtual QStringList getStoreRoles() const = 0;
  virtual int getRoleMinimumNumber(const QString &role) const = 0;
  virtual int getRoleMaximumNumber(const QString &role) const = 0;

  /// Writes the outputs of every sample of the buffer. Lists are in the order of the estimated
  /// variables; the second holds standard deviations, or variances (negative ones included)
  /// without `isStandardDeviation`. Estimates may be replaced.
  virtual void process(NbdAData *data, const QList<NbdAVariableNumeric *> &estimates,
                       const QList<NbdAVariableNumeric *> &deviations,
                       bool isStandardDeviation) const = 0;

protected:
  virtual NgmIKrigingPostPro *_clone() const = 0;
};
