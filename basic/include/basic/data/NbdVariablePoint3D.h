#pragma once

#include "basic/data/NbdAVariable_impl.h"

/// Points or vectors; undefined when one of the components is.
class NbdVariablePoint3D : public NbdAVariable_impl<NbgVector3D>
{
public:
  explicit NbdVariablePoint3D(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariablePoint3D(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool isNumeric() const override { return false; }

  QString getText(int position) const override;

  const NbgVector3D &getValue(int position) const { return getValueAsType(position); }
  void setValue(int position, const NbgVector3D &value) { setValueAsType(position, value); }
  void appendValue(const NbgVector3D &value) { appendValueAsType(value); }
  using NbdAVariable::appendValue;
};
