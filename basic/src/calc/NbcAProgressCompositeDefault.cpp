#include "basic/calc/NbcAProgressCompositeDefault.h"

NbcAProgressCompositeDefault::NbcAProgressCompositeDefault() = default;

NbcAProgressCompositeDefault::~NbcAProgressCompositeDefault()
{
  _finish();
}

void NbcAProgressCompositeDefault::registerProgressable(const QString &id,
                                                        NbcAProgress *progressable,
                                                        const QString &message, int weight,
                                                        bool append)
{
  _registerProgressable(id, progressable, message, weight, append);
}

bool NbcAProgressCompositeDefault::_prepareProgressable(const QString &)
{
  return true;
}

void NbcAProgressCompositeDefault::_progressableFinished(const QString &) {}
