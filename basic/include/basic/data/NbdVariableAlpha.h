#pragma once

#include "basic/data/NbdAVariable_impl.h"

/// Texts; the empty text is undefined.
class NbdVariableAlpha : public NbdAVariable_impl<QString>
{
public:
  explicit NbdVariableAlpha(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableAlpha(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool isNumeric() const override { return false; }

  const QString &getValue(int position) const { return getValueAsType(position); }
  void setValue(int position, const QString &value) { setValueAsType(position, value); }
  void appendValue(const QString &value) { appendValueAsType(value); }
  using NbdAVariable::appendValue;

  /// Codes become the names of their categories.
  void copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n) override;
};
