#pragma once

#include "basic/data/NbdMacroIndexInfo.h"

#include <QString>
#include <QStringList>

class NbdDataTable;
class NgdVariableRules;

/// A transformation of several variables of a data table at once. It finds the variables that it
/// reads and writes by their roles.
///
/// Threads:  transforming is const; several threads may share one transformation
class NgmIMultivariateTransform
{
public:
  virtual ~NgmIMultivariateTransform() = default;

  /// A new copy; the caller owns it.
  NgmIMultivariateTransform *clone() const { return _clone(); }

protected:
  virtual NgmIMultivariateTransform *_clone() const = 0;

public:
  /// The roles that are read or written, and how many variables each of them takes.
  virtual QStringList getAllRoles() const = 0;
  virtual int getRoleMinimumNumber(const QString &role) const = 0;
  virtual int getRoleMaximumNumber(const QString &role) const = 0;

  /// Index type and names of the macro variables of a role.
  virtual NbdMacroIndexInfo getMacroIndexInfo(const QString &role) const = 0;

  /// Writes the output variables of the table from its input variables.
  virtual void transform(const NbdDataTable &table) const = 0;

  /// Rules that the variables have to keep beyond their numbers. None by default.
  virtual void setupVariableRules(NgdVariableRules &) const {}
};
