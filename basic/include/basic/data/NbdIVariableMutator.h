#pragma once

class NbdVariableAlpha;
class NbdVariableColor;
class NbdVariableDouble;
class NbdVariableEnum;
class NbdVariableFloat;
class NbdVariableInt32;
class NbdVariableInt64;
class NbdVariableMulti;
class NbdVariablePoint3D;
class NbdVariableSelection;

/// Changes a variable according to its concrete class (NbdAVariable::acceptMutator()).
class NbdIVariableMutator
{
public:
  virtual ~NbdIVariableMutator() = default;

  virtual void mutate(NbdVariableDouble &variable) = 0;
  virtual void mutate(NbdVariableFloat &variable) = 0;
  virtual void mutate(NbdVariableInt32 &variable) = 0;
  virtual void mutate(NbdVariableInt64 &variable) = 0;
  virtual void mutate(NbdVariableSelection &variable) = 0;
  virtual void mutate(NbdVariableEnum &variable) = 0;
  virtual void mutate(NbdVariableMulti &variable) = 0;
  virtual void mutate(NbdVariableAlpha &variable) = 0;
  virtual void mutate(NbdVariablePoint3D &variable) = 0;
  virtual void mutate(NbdVariableColor &variable) = 0;
};
