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

/// Reads a variable according to its concrete class (NbdAVariable::acceptVisitor()).
class NbdIVariableVisitor
{
public:
  virtual ~NbdIVariableVisitor() = default;

  virtual void visit(const NbdVariableDouble &variable) = 0;
  virtual void visit(const NbdVariableFloat &variable) = 0;
  virtual void visit(const NbdVariableInt32 &variable) = 0;
  virtual void visit(const NbdVariableInt64 &variable) = 0;
  virtual void visit(const NbdVariableSelection &variable) = 0;
  virtual void visit(const NbdVariableEnum &variable) = 0;
  virtual void visit(const NbdVariableMulti &variable) = 0;
  virtual void visit(const NbdVariableAlpha &variable) = 0;
  virtual void visit(const NbdVariablePoint3D &variable) = 0;
  virtual void visit(const NbdVariableColor &variable) = 0;
};
