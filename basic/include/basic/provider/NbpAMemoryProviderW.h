#pragma once

#include "basic/provider/NbpAMemoryProviderR.h"

class NbdVariableInt64;

/// Data file in memory: creation, deletion and writing of variables.
template <class Interface>
class NbpAMemoryProviderW : public NbpAMemoryProviderR<Interface>
{
public:
  QString createVariable(const QString &name, Nbd::EVariableType type,
                         const NbdVariableDetails &details, const NbdEnumCatalog *catalog) override;
  QString createTemporaryVariable(const QString &name, Nbd::EVariableType type,
                                  const NbdVariableDetails &details) override;
  QString createMacro(const QString &name, Nbd::EVariableType type, const NbdMacroIndexInfo &info,
                      const NbdVariableDetails &details) override;
  QString createTemporaryMacro(const QString &name, Nbd::EVariableType type,
                               const NbdMacroIndexInfo &info,
                               const NbdVariableDetails &details) override;
  QString createMacroRealization(const QString &macroId, const NbdMacroIndex &index) override;

  bool deleteVariable(const QString &id) override;
  bool deleteMacro(const QString &id) override;

  bool writeVariable(const QString &id, const NbiIntervalIntLarge &ranks,
                     const NbdAVariable &values, int first) override;
  bool patchVariable(const QString &id, const NbdVariableInt64 &sampleNumbers,
                     const NbdAVariable &values) override;

  /// Fails for grids, whose size is fixed, and for lines, where each sample belongs to a line.
  bool appendSamples(qint64 count) override;

protected:
  using NbpAMemoryProviderR<Interface>::NbpAMemoryProviderR;
};
