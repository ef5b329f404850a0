#pragma once

#include "geos/base/Ngc.h"

#include <QMap>
#include <QMutex>
#include <QString>

#include <map>

/// The failures at targets of one run: how many of each kind, and the messages of the ten targets
/// with the smallest sample numbers. May be used from any thread.
class NgcInterpolErrors
{
public:
  void clear();

  /// Counts a failure that does not stop the run.
  void add(const QString &message, Ngc::InterpolError type, qint64 sampleNumber);

  /// Counts the failure that stops the run and returns the text that it ends with: that of the
  /// first such failure.
  QString stopAt(const QString &message, Ngc::InterpolError type);

  int getCount() const;
  bool has(Ngc::InterpolError type) const;
  QString getMessage() const;

private:
  int _count() const;

  mutable QMutex _mutex;
  QMap<Ngc::InterpolError, int> _counts;
  std::multimap<qint64, QString> _first;  // by sample number, then in order of arrival
  QString _stopMessage;
};
