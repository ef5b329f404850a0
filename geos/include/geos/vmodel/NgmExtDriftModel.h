#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"

#include <QList>
#include <QVector>

class NbdAVariableNumeric;

/// External drift: which auxiliary variables, known at the data and at the targets, the mean of
/// each variable is a linear combination of. Each pair of a variable and a drift variable is one
/// drift term, and one unbiasedness condition of a kriging system.
///
/// Drift variables are given by their index in the list that is handed to the evaluators.
///
/// Threads:  evaluation is const
/// Source:   [Galli and Meunier, 1987], Study of a gas reservoir using the external drift method
class NgmExtDriftModel : public NbbASerializable, public NbbIDebuggable
{
public:
  /// Appends the term; nothing when it is there already.
  void addDrift(int variable, int driftIndex);

  /// The variable has a term of that drift variable.
  bool isAssociated(int variable, int driftIndex) const;

  /// The drift variables of a variable, in the order of its terms.
  QList<int> getDriftIndices(int variable) const;

  /// Number of terms, of all variables or of one.
  int getNDriftEquations() const { return _terms.size(); }
  int getNDriftEquations(int variable) const { return getDriftIndices(variable).size(); }

  /// The variable whose mean a term describes.
  int getVariable(int term) const;

  /// Number of different drift variables among the terms.
  int getNDriftVariables() const;

  /// The same as it was counted while terms were added.
  int getNActiveDriftVariables() const { return _nActive; }

  /// Values of a term at samples: those of its drift variable, zeros when the term belongs to
  /// another variable than `variable`. Undefined values stay undefined.
  void getDriftValuesAtDataPoints(int term, int variable,
                                  const QList<NbdAVariableNumeric *> &driftVariables,
                                  QVector<double> &out) const;

  /// The target's value of the term's drift variable; 0 when the term belongs to another variable
  /// than `variable`.
  double getDriftValueAtTarget(int term, int variable, const QVector<double> &targetValues) const;

  QString briefSummary() const;
  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

  /// Variable and drift variable of a term; fails when there is no such term.
  void _driftRankToInfo(int term, int &variable, int &driftIndex) const;

private:
  struct Term
  {
    int variable;
    int driftIndex;
  };

  bool _hasDriftVariable(int driftIndex) const;

  QList<Term> _terms;
  int _nActive = 0;
};
