#include "basic/data/NbdDataTable.h"

#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdEVarType.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFactory.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"

#include <QDataStream>
#include <QObject>

#include <limits>

namespace {

constexpr unsigned int CURRENT_VERSION = 210601;
constexpr int MAXIMUM_COLUMNS = 1000000;
constexpr int MINIMUM_COLUMN_BYTES = 16;
constexpr int MAXIMUM_SAMPLES = std::numeric_limits<int>::max();

template <class Variable>
Variable *lookUp(const NbdDataTable &table, const QString &role, int index)
{
  return dynamic_cast<Variable *>(table.getVar(role, index));
}

template <class Variable>
Variable &lookUpRef(const NbdDataTable &table, const QString &role, int index)
{
  Variable *variable = lookUp<Variable>(table, role, index);
  if (variable)
    return *variable;
  const QString problem = table.getVar(role, index)
                              ? QStringLiteral("variable %1 of role '%2' is of another class")
                              : QStringLiteral("no variable %1 of role '%2'");
  NBE_FAIL(problem.arg(index).arg(role));
}

template <class Variable>
QList<Variable *> lookUpAll(const NbdDataTable &table, const QString &role)
{
  QList<Variable *> result;
  for (int index = 0; index < table.getRoleCount(role); ++index) {
    if (Variable *variable = lookUp<Variable>(table, role, index))
      result << variable;
  }
  return result;
}

}  // namespace

NbdDataTable::NbdDataTable() = default;
NbdDataTable::NbdDataTable(NbdDataTable &&other) noexcept = default;
NbdDataTable &NbdDataTable::operator=(NbdDataTable &&other) noexcept = default;
NbdDataTable::~NbdDataTable() = default;

NbdDataTable::NbdDataTable(const NbdDataTable &other)
    : _ranksByRole(other._ranksByRole), _nSamples(other._nSamples)
{
  _columns.reserve(other._columns.size());
  for (const Column &column : other._columns)
    _columns.push_back({column.role, column.variable->clone()});
}

NbdDataTable &NbdDataTable::operator=(const NbdDataTable &other)
{
  if (this != &other)
    *this = NbdDataTable(other);
  return *this;
}

void NbdDataTable::initFromTable(const NbdDataTable &other, int nSamples)
{
  NbdDataTable table(other);
  table.clearSamples();
  table.setNSamples(nSamples);
  *this = std::move(table);
}

void NbdDataTable::initialize()
{
  for (const Column &column : _columns) {
    column.variable->clear();
    column.variable->resizeAndFill(_nSamples);
  }
}

NbdAVariable *NbdDataTable::getVar(const QString &role, int index) const
{
  return getVarByRank(getAbsoluteRank(role, index));
}

NbdAVariableNumeric *NbdDataTable::getVarNumeric(const QString &role, int index) const
{
  return lookUp<NbdAVariableNumeric>(*this, role, index);
}

NbdVariableDouble *NbdDataTable::getVarDouble(const QString &role, int index) const
{
  return lookUp<NbdVariableDouble>(*this, role, index);
}

NbdVariableFloat *NbdDataTable::getVarFloat(const QString &role, int index) const
{
  return lookUp<NbdVariableFloat>(*this, role, index);
}

NbdVariableInt32 *NbdDataTable::getVarInt32(const QString &role, int index) const
{
  return lookUp<NbdVariableInt32>(*this, role, index);
}

NbdVariableInt64 *NbdDataTable::getVarInt64(const QString &role, int index) const
{
  return lookUp<NbdVariableInt64>(*this, role, index);
}

NbdVariableAlpha *NbdDataTable::getVarAlpha(const QString &role, int index) const
{
  return lookUp<NbdVariableAlpha>(*this, role, index);
}

NbdVariableEnum *NbdDataTable::getVarEnum(const QString &role, int index) const
{
  return lookUp<NbdVariableEnum>(*this, role, index);
}

NbdVariableMulti *NbdDataTable::getVarMulti(const QString &role, int index) const
{
  return lookUp<NbdVariableMulti>(*this, role, index);
}

NbdVariableSelection *NbdDataTable::getVarSelection(const QString &role, int index) const
{
  return lookUp<NbdVariableSelection>(*this, role, index);
}

NbdAVariable &NbdDataTable::getVarRef(const QString &role, int index) const
{
  return lookUpRef<NbdAVariable>(*this, role, index);
}

NbdAVariableNumeric &NbdDataTable::getVarNumericRef(const QString &role, int index) const
{
  return lookUpRef<NbdAVariableNumeric>(*this, role, index);
}

NbdVariableDouble &NbdDataTable::getVarDoubleRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableDouble>(*this, role, index);
}

NbdVariableFloat &NbdDataTable::getVarFloatRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableFloat>(*this, role, index);
}

NbdVariableInt32 &NbdDataTable::getVarInt32Ref(const QString &role, int index) const
{
  return lookUpRef<NbdVariableInt32>(*this, role, index);
}

NbdVariableInt64 &NbdDataTable::getVarInt64Ref(const QString &role, int index) const
{
  return lookUpRef<NbdVariableInt64>(*this, role, index);
}

NbdVariableAlpha &NbdDataTable::getVarAlphaRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableAlpha>(*this, role, index);
}

NbdVariableEnum &NbdDataTable::getVarEnumRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableEnum>(*this, role, index);
}

NbdVariableMulti &NbdDataTable::getVarMultiRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableMulti>(*this, role, index);
}

NbdVariableSelection &NbdDataTable::getVarSelectionRef(const QString &role, int index) const
{
  return lookUpRef<NbdVariableSelection>(*this, role, index);
}

QList<NbdAVariable *> NbdDataTable::getVars(const QString &role) const
{
  return lookUpAll<NbdAVariable>(*this, role);
}

QList<NbdAVariableNumeric *> NbdDataTable::getVarsNumeric(const QString &role) const
{
  return lookUpAll<NbdAVariableNumeric>(*this, role);
}

QList<NbdVariableDouble *> NbdDataTable::getVarsDouble(const QString &role) const
{
  return lookUpAll<NbdVariableDouble>(*this, role);
}

QList<NbdVariableFloat *> NbdDataTable::getVarsFloat(const QString &role) const
{
  return lookUpAll<NbdVariableFloat>(*this, role);
}

QList<NbdVariableInt32 *> NbdDataTable::getVarsInt32(const QString &role) const
{
  return lookUpAll<NbdVariableInt32>(*this, role);
}

QList<NbdVariableInt64 *> NbdDataTable::getVarsInt64(const QString &role) const
{
  return lookUpAll<NbdVariableInt64>(*this, role);
}

QList<NbdVariableAlpha *> NbdDataTable::getVarsAlpha(const QString &role) const
{
  return lookUpAll<NbdVariableAlpha>(*this, role);
}

QList<NbdVariableEnum *> NbdDataTable::getVarsEnum(const QString &role) const
{
  return lookUpAll<NbdVariableEnum>(*this, role);
}

QList<NbdVariableMulti *> NbdDataTable::getVarsMulti(const QString &role) const
{
  return lookUpAll<NbdVariableMulti>(*this, role);
}

QList<NbdVariableSelection *> NbdDataTable::getVarsSelection(const QString &role) const
{
  return lookUpAll<NbdVariableSelection>(*this, role);
}

NbdVariableDouble *NbdDataTable::getX() const
{
  return getVarDouble(Nbd::Role::X);
}

NbdVariableDouble *NbdDataTable::getY() const
{
  return getVarDouble(Nbd::Role::Y);
}

NbdVariableDouble *NbdDataTable::getZ() const
{
  return getVarDouble(Nbd::Role::Z);
}

NbdAVariable *NbdDataTable::getVarByName(const QString &name) const
{
  for (const Column &column : _columns) {
    if (column.variable->getName() == name)
      return column.variable.get();
  }
  return nullptr;
}

NbdAVariableNumeric *NbdDataTable::getVarNumericByName(const QString &name) const
{
  for (const Column &column : _columns) {
    if (column.variable->getName() != name)
      continue;
    if (auto *variable = dynamic_cast<NbdAVariableNumeric *>(column.variable.get()))
      return variable;
  }
  return nullptr;
}

NbdAVariable *NbdDataTable::getVarByRoleAndName(const QString &role, const QString &name) const
{
  for (int rank : _ranksByRole.value(role)) {
    if (_columns[rank].variable->getName() == name)
      return _columns[rank].variable.get();
  }
  return nullptr;
}

NbdAVariableNumeric *NbdDataTable::getVarNumericByRoleAndName(const QString &role,
                                                              const QString &name) const
{
  for (NbdAVariableNumeric *variable : getVarsNumeric(role)) {
    if (variable->getName() == name)
      return variable;
  }
  return nullptr;
}

NbdAVariable *NbdDataTable::getVarByMacroIndex(const QString &role, const QString &name,
                                               const NbdMacroIndex &index) const
{
  for (int rank : _ranksByRole.value(role)) {
    NbdAVariable *variable = _columns[rank].variable.get();
    if (variable->getMacroIndex() == index && variable->getName() == name)
      return variable;
  }
  return nullptr;
}

NbdAVariableNumeric *NbdDataTable::getVarNumericByStructuralRole(const NbdEVarRole &role) const
{
  return getVarNumeric(role.toCalculatorRole());
}

NbdVariableInt64 *NbdDataTable::getVarInt64ByStructuralRole(const NbdEVarRole &role) const
{
  return getVarInt64(role.toCalculatorRole());
}

NbdAVariable *NbdDataTable::getVarByRank(int rank) const
{
  return rank >= 0 && rank < getNVariables() ? _columns[rank].variable.get() : nullptr;
}

QString NbdDataTable::getRoleByRank(int rank) const
{
  return rank >= 0 && rank < getNVariables() ? _columns[rank].role : QString();
}

int NbdDataTable::getAbsoluteRank(const QString &role, int index) const
{
  const auto ranks = _ranksByRole.constFind(role);
  return ranks == _ranksByRole.constEnd() ? -1 : ranks->value(index, -1);
}

QList<NbdAVariable *> NbdDataTable::getAllVars() const
{
  QList<NbdAVariable *> result;
  for (const Column &column : _columns)
    result << column.variable.get();
  return result;
}

QStringList NbdDataTable::getAllRoles() const
{
  QStringList result;
  for (const Column &column : _columns)
    result << column.role;
  return result;
}

QStringList NbdDataTable::getUniqueRoles() const
{
  return _ranksByRole.keys();
}

NbdAVariable *NbdDataTable::createVariableSimple(const QString &role, Nbd::EVariableType type,
                                                 const NbdVariableDetails &details)
{
  return addVariable(role, NbdVariableFactory::createVariable(type, details));
}

NbdAVariableNumeric *NbdDataTable::createVariableNumeric(const QString &role,
                                                         const NbdVariableDetails &details,
                                                         Nbd::EVariableType type)
{
  std::unique_ptr<NbdAVariableNumeric> variable =
      NbdVariableFactory::createVariableNumeric(type, details);
  NbdAVariableNumeric *added = variable.get();
  addVariable(role, std::move(variable));
  return added;
}

NbdVariableMulti *NbdDataTable::createVariableMulti(const QString &role,
                                                    const NbdVariableDetails &details,
                                                    const QList<NbdMacroIndex> &indices,
                                                    const NbdMacroIndexInfo &info)
{
  auto variable = std::make_unique<NbdVariableMulti>(details, indices, info);
  NbdVariableMulti *added = variable.get();
  addVariable(role, std::move(variable));
  return added;
}

NbdVariableAlpha *NbdDataTable::createVariableAlpha(const QString &role,
                                                    const NbdVariableDetails &details)
{
  auto variable = std::make_unique<NbdVariableAlpha>(details);
  NbdVariableAlpha *added = variable.get();
  addVariable(role, std::move(variable));
  return added;
}

NbdVariableSelection *NbdDataTable::createVariableSelection(const QString &role,
                                                            const NbdVariableDetails &details)
{
  auto variable = std::make_unique<NbdVariableSelection>(details);
  NbdVariableSelection *added = variable.get();
  addVariable(role, std::move(variable));
  return added;
}

NbdAVariable *NbdDataTable::addVariable(const QString &role, std::unique_ptr<NbdAVariable> variable)
{
  return insertVariable(getNVariables(), role, std::move(variable));
}

NbdAVariable *NbdDataTable::addVariable(const QString &role, const NbdAVariable &variable)
{
  return addVariable(role, variable.clone());
}

NbdAVariable *NbdDataTable::insertVariable(int rank, const QString &role,
                                           std::unique_ptr<NbdAVariable> variable)
{
  if (!variable)
    NBE_FAIL(QStringLiteral("no variable given"));
  if (rank < 0 || rank > getNVariables())
    NBE_FAIL(QStringLiteral("no column of rank %1").arg(rank));
  _fitVariable(*variable);
  NbdAVariable *added = variable.get();
  _columns.insert(_columns.begin() + rank, Column{role, std::move(variable)});
  if (rank == getNVariables() - 1)
    _ranksByRole[role].append(rank);
  else
    _updateRanks();
  return added;
}

void NbdDataTable::setVariableRole(int rank, const QString &role)
{
  _checkRank(rank);
  _columns[rank].role = role;
  _updateRanks();
}

void NbdDataTable::deleteVariable(const QString &role, int index)
{
  deleteColumnByRank(getAbsoluteRank(role, index));
}

void NbdDataTable::deleteColumnByRank(int rank)
{
  _checkRank(rank);
  _columns.erase(_columns.begin() + rank);
  _updateRanks();
}

void NbdDataTable::clearTable()
{
  *this = NbdDataTable();
}

void NbdDataTable::setNSamples(int n)
{
  if (n < 0)
    NBE_FAIL(QStringLiteral("%1 is no number of samples").arg(n));
  for (const Column &column : _columns)
    column.variable->resizeAndFill(n);
  _nSamples = n;
}

void NbdDataTable::adjustNSamples()
{
  int longest = 0;
  for (const Column &column : _columns)
    longest = std::max(longest, column.variable->getNValues());
  setNSamples(_columns.empty() ? _nSamples : longest);
}

void NbdDataTable::appendSamples(int count)
{
  if (count < 0)
    NBE_FAIL(QStringLiteral("%1 is no number of samples").arg(count));
  if (count > MAXIMUM_SAMPLES - _nSamples)
    throw NbeMemoryError(QObject::tr("There are too many samples for one data table."));
  setNSamples(_nSamples + count);
}

void NbdDataTable::appendSamples(const NbdDataTable &other)
{
  const int first = _nSamples;
  const int count = other._nSamples;
  appendSamples(count);
  for (const QString &role : getUniqueRoles()) {
    const int nCommon = std::min(getRoleCount(role), other.getRoleCount(role));
    for (int index = 0; index < nCommon; ++index)
      getVar(role, index)->copySamplesFrom(*other.getVar(role, index), 0, first, count);
  }
}

void NbdDataTable::removeSamples(int first, int count)
{
  _checkSamples(first, count);
  for (const Column &column : _columns)
    column.variable->removeValues(first, count);
  _nSamples -= count;
}

void NbdDataTable::reserve(int nSamples)
{
  for (const Column &column : _columns)
    column.variable->reserve(nSamples);
}

void NbdDataTable::copyLine(const NbdDataTable &other, int otherSample, int sample)
{
  _checkSamples(sample, 1);
  other._checkSamples(otherSample, 1);
  for (const QString &role : getUniqueRoles()) {
    const int nCommon = std::min(getRoleCount(role), other.getRoleCount(role));
    for (int index = 0; index < nCommon; ++index)
      getVar(role, index)->copySamplesFrom(*other.getVar(role, index), otherSample, sample, 1);
  }
}

NbdDataTable NbdDataTable::extractSamples(const QVector<int> &samples) const
{
  for (int sample : samples)
    _checkSamples(sample, 1);
  _checkLengths();
  NbdDataTable result(*this);
  for (const Column &column : result._columns)
    column.variable->extract(samples.constData(), samples.size());
  result._nSamples = samples.size();
  return result;
}

void NbdDataTable::sort(const NbdAVariable &variable, bool ascending)
{
  if (variable.getNValues() != _nSamples)
    NBE_FAIL(QStringLiteral("variable '%1' has %2 values for %3 samples")
                 .arg(variable.getName())
                 .arg(variable.getNValues())
                 .arg(_nSamples));
  _checkLengths();
  const std::vector<int> positions = variable.getSortedPositions(ascending);
  for (const Column &column : _columns)
    column.variable->permute(positions.data());
}

void NbdDataTable::compress(const unsigned char *keep)
{
  _checkLengths();
  for (const Column &column : _columns)
    column.variable->compress(keep);
  _nSamples -= int(std::count(keep, keep + _nSamples, 0));
}

void NbdDataTable::compress(const NbdVariableSelection &keep)
{
  if (keep.getNValues() != _nSamples)
    NBE_FAIL(QStringLiteral("%1 flags for %2 samples").arg(keep.getNValues()).arg(_nSamples));
  // The flags may be a column of this table.
  const NbdVariableSelection flags(keep);
  compress(flags.getArrayConst());
}

void NbdDataTable::detachData()
{
  for (const Column &column : _columns)
    column.variable->detachData();
}

QString NbdDataTable::debug(int level) const
{
  const QString indent(2 * std::max(0, level), ' ');
  QString text =
      indent +
      QStringLiteral("Data table: %1 samples, %2 variables\n").arg(_nSamples).arg(getNVariables());
  for (auto ranks = _ranksByRole.begin(); ranks != _ranksByRole.end(); ++ranks) {
    for (int index = 0; index < ranks->size(); ++index) {
      const NbdAVariable &variable = *_columns[ranks->at(index)].variable;
      const NbdEVarType &type = NbdEVarType::fromUdVarType(variable.getVariableType());
      text += indent + QStringLiteral("  %1[%2] \"%3\" %4")
                           .arg(ranks.key(), QString::number(index), variable.getName(),
                                type.getKeyString());
      if (variable.hasMacroIndex())
        text += QStringLiteral(" (%1)").arg(variable.getMacroIndex().toString());
      else if (variable.isMultiRealizations())
        text += QStringLiteral(" (%1 realizations)").arg(variable.getNRealizations());
      text += '\n';
    }
  }
  return text;
}

QString NbdDataTable::toString() const
{
  QStringList cells;
  for (const Column &column : _columns)
    cells << column.variable->getName();
  QString text = cells.join('\t') + '\n';
  for (int sample = 0; sample < _nSamples; ++sample) {
    cells.clear();
    for (const Column &column : _columns)
      cells << column.variable->getText(sample);
    text += cells.join('\t') + '\n';
  }
  return text;
}

void NbdDataTable::_checkRank(int rank) const
{
  if (rank < 0 || rank >= getNVariables())
    NBE_FAIL(QStringLiteral("no column of rank %1").arg(rank));
}

void NbdDataTable::_checkLengths() const
{
  for (const Column &column : _columns) {
    if (column.variable->getNValues() != _nSamples)
      NBE_FAIL(QStringLiteral("variable '%1' has %2 values for %3 samples")
                   .arg(column.variable->getName())
                   .arg(column.variable->getNValues())
                   .arg(_nSamples));
  }
}

void NbdDataTable::_checkSamples(int first, int count) const
{
  if (first < 0 || count < 0 || first > _nSamples - count)
    NBE_FAIL(QStringLiteral("%1 samples from %2 on are not within %3 samples")
                 .arg(count)
                 .arg(first)
                 .arg(_nSamples));
}

void NbdDataTable::_fitVariable(NbdAVariable &variable)
{
  if (variable.getNValues() == 0)
    variable.resizeAndFill(_nSamples);
  else if (_columns.empty() && _nSamples == 0)
    _nSamples = variable.getNValues();
  else if (variable.getNValues() != _nSamples)
    NBE_FAIL(QStringLiteral("variable '%1' has %2 values for %3 samples")
                 .arg(variable.getName())
                 .arg(variable.getNValues())
                 .arg(_nSamples));
}

void NbdDataTable::_updateRanks()
{
  _ranksByRole.clear();
  for (int rank = 0; rank < getNVariables(); ++rank)
    _ranksByRole[_columns[rank].role].append(rank);
}

QList<unsigned int> NbdDataTable::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbdDataTable::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbdDataTable::_serialize(QDataStream &stream) const
{
  stream << quint32(_nSamples) << quint32(_columns.size());
  for (const Column &column : _columns) {
    stream << column.role << qint32(column.variable->getVariableType());
    column.variable->serialize(stream);
  }
}

void NbdDataTable::_unserialize(QDataStream &stream, unsigned int)
{
  quint32 nSamples = 0, nColumns = 0;
  stream >> nSamples >> nColumns;
  _checkCount(stream, nSamples, 0, MAXIMUM_SAMPLES);
  _checkCount(stream, nColumns, MINIMUM_COLUMN_BYTES, MAXIMUM_COLUMNS);
  NbdDataTable read;
  for (quint32 i = 0; i < nColumns; ++i) {
    QString role;
    qint32 type = 0;
    stream >> role >> type;
    _checkStream(stream);
    if (!NbdEVarType::existsUdVarType(type) || type == Nbd::TYPE_NONE)
      _refuse(QObject::tr("unknown type of variable %1").arg(type));
    std::unique_ptr<NbdAVariable> variable = NbdVariableFactory::createVariable(
        static_cast<Nbd::EVariableType>(type), NbdVariableDetails());
    variable->unserialize(stream);
    if (variable->getNValues() != int(nSamples))
      _refuse(QObject::tr("bad number of values of '%1'").arg(variable->getName()));
    read._columns.push_back({role, std::move(variable)});
  }
  read._nSamples = int(nSamples);
  read._updateRanks();
  *this = std::move(read);
}
