#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"
#include "basic/data/NbdEnumCatalog.h"

class NbcProportions;

/// Codes of categories; undefined is I16_FFFF. Codes can be read as numbers, but are no quantities.
class NbdVariableEnum : public NbdAVariableNumeric_impl<qint16>
{
public:
  explicit NbdVariableEnum(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableEnum(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool isNumeric() const override { return false; }

  const NbdEnumCatalog &getCatalog() const { return _catalog; }
  void setCatalog(const NbdEnumCatalog &catalog) { _catalog = catalog; }

  /// Name of the category; empty when it is undefined or not in the catalogue.
  QString getCategoryName(int position) const { return _catalog.getName(getValueAsType(position)); }

  QString getText(int position) const override;

  /// Numbers and shares of the samples by code.
  NbcProportions getProportions() const;

  /// Texts become the codes of the categories of that name, undefined for other texts. The values
  /// of another enumerated variable are copied as codes.
  void copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n) override;

protected:
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;

private:
  NbdEnumCatalog _catalog;
};
