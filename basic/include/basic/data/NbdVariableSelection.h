#pragma once

#include "basic/data/NbdAVariableNumeric_impl.h"

/// Which samples take part: 1 or 0. There is no undefined value; new values are 1.
class NbdVariableSelection : public NbdAVariableNumeric_impl<unsigned char>
{
public:
  explicit NbdVariableSelection(const NbdVariableDetails &details = NbdVariableDetails());
  explicit NbdVariableSelection(const QString &name);

  Nbd::EVariableType getVariableType() const override;
  std::unique_ptr<NbdAVariable> clone() const override;
  void acceptVisitor(NbdIVariableVisitor &visitor) const override;
  void acceptMutator(NbdIVariableMutator &mutator) override;

  bool getBoolValue(int position) const { return getValueAsType(position) != 0; }
  void setBoolValue(int position, bool selected) { setValueAsType(position, selected ? 1 : 0); }

  int getNSelected() const;
};
