#pragma once

#include "basic/data/NbdObjectDefinition.h"
#include "basic/provider/NbpIProviderR.h"

/// Reading side of a file of objects (lines): samples are grouped by line and consecutive.
class NbpIProviderObjectR : public virtual NbpIProviderR
{
public:
  ~NbpIProviderObjectR() override;

  /// All lines in file order, those without samples included.
  virtual NbdObjectDefinitions getObjectDefinitions() const = 0;

  /// Whether samples are intervals along their line (cores) rather than points.
  virtual bool isSupportCore() const = 0;

  /// Selected samples of the given lines, line after line; `values` has their total number.
  virtual bool readObjects(const QString &id, const QList<int> &lineRanks,
                           NbdAVariable &values) const = 0;

  virtual bool readObjectsCoordinates(const QList<int> &lineRanks, NbdVariableDouble *x,
                                      NbdVariableDouble *y, NbdVariableDouble *z) const = 0;
};
