#pragma once

class NgdADataSet;
class QString;

/// Operations on pairs of data sets.
class NgdDataSetHelper
{
public:
  /// Binds every variable of `fromRole` in `from` to `toRole` in `to`; both share one provider.
  static void forwardRole(const NgdADataSet &from, NgdADataSet &to, const QString &fromRole,
                          const QString &toRole);
};
