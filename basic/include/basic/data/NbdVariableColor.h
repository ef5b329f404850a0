#pragma once

#include "basic/data/NbdAVariable_impl.h"

/// Colours.
class NbdVariableColor : public NbdAVariable_impl<NbdColor>
{
public:
  explicit NbdVariableColor(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableColor(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool isNumeric() const override { return false; }

  NbdColor getValue(int position) const { return getValueAsType(position); }
  void setValue(int position, NbdColor value) { setValueAsType(position, value); }
};
