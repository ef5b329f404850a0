#pragma once

#include "basic/calc/NbcAProgressComposite.h"

/// A composite of plain progress objects that runs all of them and takes no results: register, then
/// start.
class NbcAProgressCompositeDefault : public NbcAProgressComposite<NbcAProgress>
{
public:
  NbcAProgressCompositeDefault();
  ~NbcAProgressCompositeDefault() override;

  /// See _registerProgressable(); the composite owns `progressable`.
  void registerProgressable(const QString &id, NbcAProgress *progressable, const QString &message,
                            int weight = 1, bool append = true);

  /// Forgets and deletes all registered objects.
  void reset() { _reset(); }

protected:
  bool _prepareProgressable(const QString &id) override;
  void _progressableFinished(const QString &id) override;
};
