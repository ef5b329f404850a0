#include "geos/vmodel/NgmExtDriftModel.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/error/NbeAssertion.h"

#include <QDataStream>
#include <QObject>
#include <QSet>

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned int VERSION = 170705;

}  // namespace

void NgmExtDriftModel::addDrift(int variable, int driftIndex)
{
  if (isAssociated(variable, driftIndex))
    return;
  if (!_hasDriftVariable(driftIndex))
    ++_nActive;
  _terms << Term{variable, driftIndex};
}

bool NgmExtDriftModel::isAssociated(int variable, int driftIndex) const
{
  return getDriftIndices(variable).contains(driftIndex);
}

QList<int> NgmExtDriftModel::getDriftIndices(int variable) const
{
  QList<int> indices;
  for (const Term &term : _terms)
    if (term.variable == variable)
      indices << term.driftIndex;
  return indices;
}

int NgmExtDriftModel::getVariable(int term) const
{
  int variable = 0, driftIndex = 0;
  _driftRankToInfo(term, variable, driftIndex);
  return variable;
}

int NgmExtDriftModel::getNDriftVariables() const
{
  QSet<int> indices;
  for (const Term &term : _terms)
    indices << term.driftIndex;
  return indices.size();
}

void NgmExtDriftModel::getDriftValuesAtDataPoints(
    int term, int variable, const QList<NbdAVariableNumeric *> &driftVariables,
    QVector<double> &out) const
{
  int owner = 0, driftIndex = 0;
  _driftRankToInfo(term, owner, driftIndex);
  if (driftIndex < 0 || driftIndex >= driftVariables.size())
    NBE_FAIL(QStringLiteral("No drift variable found."));
  const NbdAVariableNumeric &drift = *driftVariables[driftIndex];
  out.resize(int(drift.getNValues()));
  if (owner == variable)
    drift.getValuesAsDouble(0, out.size(), out.data());
  else
    out.fill(0.);
}

double NgmExtDriftModel::getDriftValueAtTarget(int term, int variable,
                                               const QVector<double> &targetValues) const
{
  int owner = 0, driftIndex = 0;
  _driftRankToInfo(term, owner, driftIndex);
  if (owner != variable)
    return 0.;
  if (driftIndex < 0 || driftIndex >= targetValues.size())
    NBE_FAIL(QStringLiteral("No drift value at the target."));
  return targetValues[driftIndex];
}

QString NgmExtDriftModel::briefSummary() const
{
  return QObject::tr("External Drifts: Nb vars=%1").arg(getNDriftVariables());
}

QString NgmExtDriftModel::debug(int /*level*/) const
{
  QString text =
      QStringLiteral("Total Number of Ext. Drifts Equations = %1\n").arg(getNDriftEquations());
  for (const Term &term : _terms)
    text +=
        QStringLiteral("Variable #%1 <=> Ext Drift #%2\n").arg(term.variable).arg(term.driftIndex);
  return text;
}

QList<unsigned int> NgmExtDriftModel::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NgmExtDriftModel::_currentSerializedVersion() const
{
  return VERSION;
}

void NgmExtDriftModel::_serialize(QDataStream &stream) const
{
  stream << qint32(_nActive) << qint32(_terms.size());
  for (const Term &term : _terms)
    stream << qint32(term.variable) << qint32(term.driftIndex);
}

void NgmExtDriftModel::_unserialize(QDataStream &stream, unsigned int /*version*/)
{
  NgmExtDriftModel model;
  qint32 nActive = 0, nTerms = 0;
  stream >> nActive >> nTerms;
  _checkCount(stream, nTerms, 2 * sizeof(qint32), std::numeric_limits<qint32>::max());
  for (qint32 i = 0; i < nTerms; ++i) {
    qint32 variable = 0, driftIndex = 0;
    stream >> variable >> driftIndex;
    _checkStream(stream);
    model._terms << Term{variable, driftIndex};
  }
  if (nActive != model.getNDriftVariables())
    _refuse(QObject::tr("inconsistent number of drift variables"));
  model._nActive = nActive;
  *this = model;
}

void NgmExtDriftModel::_driftRankToInfo(int term, int &variable, int &driftIndex) const
{
  if (term < 0 || term >= _terms.size())
    NBE_FAIL(QStringLiteral("invalid drift term"));
  variable = _terms[term].variable;
  driftIndex = _terms[term].driftIndex;
}

bool NgmExtDriftModel::_hasDriftVariable(int driftIndex) const
{
  return std::any_of(_terms.begin(), _terms.end(),
                     [driftIndex](const Term &term) { return term.driftIndex == driftIndex; });
}
