#pragma once

#include "basic/data/Nbd.h"
#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <variant>
#include <vector>

class NbdAVariable;
class NbdEnumCatalog;
class NbdEVarRole;
class NbdMacroIndexInfo;
class NbdVariableDouble;
class NbdVariableSelection;
class NbdVarTypeFlags;
class NbgBox;
class NbgEDimension;
class NbgGeomGrid;
class NbiIntervalIntLarge;
class NbiIntervalIntSmall;
class NbpMemoryStorage;

/// Data file held in memory: its catalogue, its selection, and the operations that fill it.
/// `Interface` is one of the provider interfaces.
///
/// Every variable is one contiguous typed column with 64-bit ranks. Ids are "v1", "v2", ... in
/// order of creation and never used again. Sample numbers (and the coordinates of a grid) are
/// served without storage: they have ids, found by their structural role, but no name in the
/// catalogue and cannot be written.
///
/// The operations that fill a provider follow the rules of the interfaces: they return an empty id
/// or false, and getLastError() says why. The last error is kept for each thread apart, so that
/// calculators sharing a provider read their own.
///
/// A variable that is open, plays a structural role or is the selection cannot be deleted;
/// temporary ones can at any time. Write access, once opened, lasts until the last opening is
/// closed. Reading needs no opening.
template <class Interface>
class NbpAMemoryProviderBase : public Interface
{
public:
  ~NbpAMemoryProviderBase() override;
  NbpAMemoryProviderBase(const NbpAMemoryProviderBase &) = delete;
  NbpAMemoryProviderBase &operator=(const NbpAMemoryProviderBase &) = delete;

  /// Adds a variable with its values, one per sample, and returns its id. T is double, float, int,
  /// qint64, bool (a selection), QString or NbgVector3D.
  template <typename T>
  QString addVariable(const QString &name, std::vector<T> values,
                      const NbdVariableDetails &details = NbdVariableDetails())
  {
    return _addVariable(name, Values(std::move(values)), details);
  }

  /// Adds an enumerated variable with its codes and their categories.
  QString addVariableEnum(const QString &name, std::vector<qint16> codes,
                          const NbdEnumCatalog &catalog,
                          const NbdVariableDetails &details = NbdVariableDetails());

  /// Adds a variable with undefined values (true for a selection).
  QString addEmptyVariableSimple(const QString &name, Nbd::EVariableType type,
                                 const NbdVariableDetails &details = NbdVariableDetails());

  /// Adds a macro variable without realizations; its type is that of its realizations.
  QString addMacro(const QString &name, Nbd::EVariableType type, const NbdMacroIndexInfo &info,
                   const NbdVariableDetails &details = NbdVariableDetails());

  /// Adds a realization with its values, of the type of the macro, one per sample.
  template <typename T>
  QString addRealization(const QString &macroId, const NbdMacroIndex &index, std::vector<T> values)
  {
    return _addRealization(macroId, index, Values(std::move(values)));
  }

  /// Selects the samples whose value is true; the values are copied, one per sample.
  bool setSelection(const NbdVariableSelection &selection);
  bool setSelection(const std::vector<bool> &flags);

  QString getLastError() const override;
  qint64 getSampleCount() const override;

  QStringList getVariableIds() const override;
  QStringList getMacroIds() const override;
  QString getIdFromName(const QString &name) const override;
  QString getStructuralRoleId(const NbdEVarRole &role) const override;
  bool isMacro(const QString &id) const override;
  bool testVariable(const QString &id, const NbdVarTypeFlags &flags) const override;
  bool testMacro(const QString &id, const NbdVarTypeFlags &flags) const override;
  bool getVariableType(const QString &id, Nbd::EVariableType &type) const override;
  bool getDetails(const QString &id, NbdVariableDetails &details) const override;
  bool getCatalog(const QString &id, NbdEnumCatalog &catalog) const override;
  bool getMacroIndexInfo(const QString &id, NbdMacroIndexInfo &info) const override;
  bool getMacroIndices(const QString &id, QList<NbdMacroIndex> &indices) const override;
  QString getRealizationId(const QString &macroId, const NbdMacroIndex &index) const override;

  bool openVariable(const QString &id, Nbd::EAccessType access) override;
  void closeVariable(const QString &id) override;
  bool isVariableOpen(const QString &id) const override;

  bool hasSelection() const override;
  QString getSelectionId() const override;
  bool setSelectionId(const QString &id) override;
  bool select(const NbiIntervalIntLarge &ranks) override;
  bool deselect(const NbiIntervalIntLarge &ranks) override;
  qint64 getSelectedSampleCount(const NbiIntervalIntLarge &ranks) const override;

protected:
  explicit NbpAMemoryProviderBase(qint64 nSamples);
  /// The grid's coordinates are served from its geometry.
  explicit NbpAMemoryProviderBase(const NbgGeomGrid &geometry);

  NbpMemoryStorage &_getStorage() { return *_storage; }
  const NbpMemoryStorage &_getStorage() const { return *_storage; }

  /// Adds a double variable that plays a structural role.
  QString _addStructuralVariable(const NbdEVarRole &role, const QString &name,
                                 std::vector<double> values);

private:
  using Values =
      std::variant<std::vector<double>, std::vector<float>, std::vector<int>, std::vector<qint64>,
                   std::vector<bool>, std::vector<QString>, std::vector<NbgVector3D>>;

  QString _addVariable(const QString &name, Values values, const NbdVariableDetails &details);
  QString _addRealization(const QString &macroId, const NbdMacroIndex &index, Values values);

  std::unique_ptr<NbpMemoryStorage> _storage;
};
