#pragma once

#include "basic/provider/NbpIProviderR.h"

class NbdVariableInt64;

/// Writing side of a data file. What is written is visible to the next read.
class NbpIProviderW : public virtual NbpIProviderR
{
public:
  ~NbpIProviderW() override;

  bool isWriter() const override { return true; }

  /// Creates a variable and returns its id; its values are undefined (a selection's are true).
  /// Fails when the name is in use. `catalog` belongs to enumerated variables and may be null.
  virtual QString createVariable(const QString &name, Nbd::EVariableType type,
                                 const NbdVariableDetails &details,
                                 const NbdEnumCatalog *catalog) = 0;

  /// The same for a variable that its creator deletes at the end of a run.
  virtual QString createTemporaryVariable(const QString &name, Nbd::EVariableType type,
                                          const NbdVariableDetails &details) = 0;

  /// Creates a macro variable without realizations and returns its id.
  virtual QString createMacro(const QString &name, Nbd::EVariableType type,
                              const NbdMacroIndexInfo &info, const NbdVariableDetails &details) = 0;
  virtual QString createTemporaryMacro(const QString &name, Nbd::EVariableType type,
                                       const NbdMacroIndexInfo &info,
                                       const NbdVariableDetails &details) = 0;

  /// Creates one realization with undefined values; an existing one is kept and its id returned.
  virtual QString createMacroRealization(const QString &macroId, const NbdMacroIndex &index) = 0;

  virtual bool deleteVariable(const QString &id) = 0;
  virtual bool deleteMacro(const QString &id) = 0;

  /// Writes positions first, first + 1, ... of `values` to the selected samples of a range; the
  /// variable must be open for writing. Samples that are not selected keep their values.
  virtual bool writeVariable(const QString &id, const NbiIntervalIntLarge &ranks,
                             const NbdAVariable &values, int first) = 0;

  /// Writes values[k] to the sample of number sampleNumbers[k], selected or not; undefined sample
  /// numbers are skipped, those beyond the file are an error and nothing is written.
  virtual bool patchVariable(const QString &id, const NbdVariableInt64 &sampleNumbers,
                             const NbdAVariable &values) = 0;

  /// Appends samples with undefined values at the end of the file; they are selected.
  virtual bool appendSamples(qint64 count) = 0;
};
