#pragma once

#include "basic/data/Nbd.h"
#include "basic/data/NbdMacroIndex.h"

#include <QList>
#include <QString>
#include <QStringList>

class NbdAVariable;
class NbdEnumCatalog;
class NbdEVarRole;
class NbdMacroIndexInfo;
class NbdVariableDetails;
class NbdVariableDouble;
class NbdVariableSelection;
class NbdVarTypeFlags;
class NbgBox;
class NbgEDimension;
class NbiIntervalIntLarge;

/// Reading side of a data file: what it holds, and ranges of its values.
///
/// The seam between data sets and storage. Calls do not throw: they return false or an empty id,
/// and getLastError() says why until the next call. Every call takes the provider's own mutex once,
/// so two calculators may share a provider.
///
/// A variable (plain or macro) is named by an opaque id, unique and stable, never equal to its name
/// by rule. A macro variable is a set of realizations, each of which has an id of its own.
///
/// Ranks count samples from 0. Reading a range gives its selected samples in rank order (all of
/// them when there is no selection); writing a range back writes to the same selected ranks.
class NbpIProviderR
{
public:
  virtual ~NbpIProviderR();

  virtual bool isWriter() const { return false; }

  /// Why the last call failed; empty when it did not.
  virtual QString getLastError() const = 0;

  virtual qint64 getSampleCount() const = 0;

  /// Dimension of the coordinates.
  virtual NbgEDimension getDimension() const = 0;

  /// Extends `box` with the locations of the selected samples.
  virtual bool updateBoundingBox(NbgBox &box) const = 0;

  /// Ids of all plain variables (realizations of macros left out), in order of creation.
  virtual QStringList getVariableIds() const = 0;

  /// Ids of all macro variables, in order of creation.
  virtual QStringList getMacroIds() const = 0;

  /// Id of the plain or macro variable of that name; empty when there is none.
  virtual QString getIdFromName(const QString &name) const = 0;

  /// Id of the variable that plays a structural role (X, Y, Z, SN ...); empty when none does.
  virtual QString getStructuralRoleId(const NbdEVarRole &role) const = 0;

  virtual bool isMacro(const QString &id) const = 0;

  /// Whether `id` is a plain (macro) variable whose type is among `flags`.
  virtual bool testVariable(const QString &id, const NbdVarTypeFlags &flags) const = 0;
  virtual bool testMacro(const QString &id, const NbdVarTypeFlags &flags) const = 0;

  virtual bool getVariableType(const QString &id, Nbd::EVariableType &type) const = 0;
  virtual bool getDetails(const QString &id, NbdVariableDetails &details) const = 0;

  /// Categories of an enumerated variable.
  virtual bool getCatalog(const QString &id, NbdEnumCatalog &catalog) const = 0;

  virtual bool getMacroIndexInfo(const QString &id, NbdMacroIndexInfo &info) const = 0;
  virtual bool getMacroIndices(const QString &id, QList<NbdMacroIndex> &indices) const = 0;

  /// Id of one realization of a macro variable; empty when it does not exist.
  virtual QString getRealizationId(const QString &macroId, const NbdMacroIndex &index) const = 0;

  /// Opens a variable, or all realizations of a macro. Openings are counted; a variable may be open
  /// several times. Closing what is not open does nothing.
  virtual bool openVariable(const QString &id, Nbd::EAccessType access) = 0;
  virtual void closeVariable(const QString &id) = 0;
  virtual bool isVariableOpen(const QString &id) const = 0;

  virtual bool hasSelection() const = 0;

  /// Id of the variable used as selection; empty without selection and for one held in memory.
  virtual QString getSelectionId() const = 0;

  /// Uses a variable as selection (undefined or 0 is not selected); an empty id clears it.
  virtual bool setSelectionId(const QString &id) = 0;

  /// Changes a selection held in memory; one that selects everything is made when there is none.
  virtual bool select(const NbiIntervalIntLarge &ranks) = 0;
  virtual bool deselect(const NbiIntervalIntLarge &ranks) = 0;

  /// Number of selected samples in a range.
  virtual qint64 getSelectedSampleCount(const NbiIntervalIntLarge &ranks) const = 0;

  /// Reads the selected samples of a range into positions first, first + 1, ... of `values`, which
  /// is large enough. Values are converted to the type of `values`; a multi-realization variable
  /// receives them in its current realization.
  virtual bool readVariable(const QString &id, const NbiIntervalIntLarge &ranks,
                            NbdAVariable &values, int first) const = 0;

  /// Coordinates of the selected samples of a range; columns that are null are skipped, columns
  /// beyond the dimension receive 0.
  virtual bool readCoordinates(const NbiIntervalIntLarge &ranks, NbdVariableDouble *x,
                               NbdVariableDouble *y, NbdVariableDouble *z, int first) const = 0;

  /// The selection of a range, one value per sample; resizes `selection`. All true without one.
  virtual bool readSelection(const NbiIntervalIntLarge &ranks,
                             NbdVariableSelection &selection) const = 0;
};
