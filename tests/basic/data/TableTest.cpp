#include "basic/data/NbdDataTable.h"
#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdVarRoleHelper.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

namespace {

using namespace Nbd;

/// n samples: X = i, SN = i + 1, V = -i twice ("a" in double, "b" in float), a text "s<i>", a
/// selection and two realizations 100 + i and 200 + i.
NbdDataTable makeTable(int n)
{
  NbdDataTable table;
  table.setNSamples(n);
  table.createVariableNumeric(Role::X, NbdVariableDetails("x"));
  table.createVariableNumeric(Role::SN, NbdVariableDetails("number"), TYPE_INT64);
  table.createVariableNumeric(Role::V, NbdVariableDetails("a"));
  table.createVariableAlpha(Role::CODE, NbdVariableDetails("text"));
  table.createVariableSelection(Role::SELECTION, NbdVariableDetails("selection"));
  table.createVariableNumeric(Role::V, NbdVariableDetails("b"), TYPE_FLOAT);
  table.createVariableMulti(Role::SIMU, NbdVariableDetails("simu"),
                            {NbdMacroIndex(1), NbdMacroIndex(2)}, NbdMacroIndexInfo());
  for (int i = 0; i < n; ++i) {
    table.getX()->setValue(i, i);
    table.getVarInt64Ref(Role::SN).setValue(i, i + 1);
    table.getVarNumericRef(Role::V, 0).setValue(i, -i);
    table.getVarNumericRef(Role::V, 1).setValue(i, -i);
    table.getVarAlphaRef(Role::CODE).setValue(i, QStringLiteral("s%1").arg(i));
    table.getVarMultiRef(Role::SIMU).setAllValues(i, {100. + i, 200. + i});
  }
  return table;
}

/// All columns of a table made by makeTable() tell the same sample at each place.
void expectSamples(const NbdDataTable &table, const std::vector<int> &samples)
{
  ASSERT_EQ(table.getNSamples(), int(samples.size()));
  for (int k = 0; k < int(samples.size()); ++k) {
    const int i = samples[k];
    EXPECT_EQ(table.getX()->getValue(k), i) << k;
    EXPECT_EQ(table.getVarInt64Ref(Role::SN).getValueAsType(k), i + 1) << k;
    EXPECT_EQ(table.getVarNumericRef(Role::V, 0).getValue(k), -i) << k;
    EXPECT_EQ(table.getVarNumericRef(Role::V, 1).getValue(k), -i) << k;
    EXPECT_EQ(table.getVarAlphaRef(Role::CODE).getValue(k), QStringLiteral("s%1").arg(i)) << k;
    EXPECT_EQ(table.getVarMultiRef(Role::SIMU).getAllValues(k),
              (QVector<double>{100. + i, 200. + i}))
        << k;
  }
  for (NbdAVariable *variable : table.getAllVars())
    EXPECT_EQ(variable->getNValues(), table.getNSamples()) << variable->getName().toStdString();
}

}  // namespace

TEST(Table, FindsColumnsByRoleAndIndex)
{
  const NbdDataTable table = makeTable(3);
  EXPECT_EQ(table.getRoleCount(Role::V), 2);
  EXPECT_EQ(table.getVar(Role::V, 1)->getName(), "b");
  EXPECT_EQ(table.getVarDouble(Role::V, 1), nullptr);
  EXPECT_EQ(table.getVarFloat(Role::V, 1), table.getVar(Role::V, 1));
  EXPECT_EQ(table.getVarNumeric(Role::CODE), nullptr);
  EXPECT_EQ(table.getVar(Role::V, 2), nullptr);
  EXPECT_EQ(table.getVar(Role::V, -1), nullptr);
  EXPECT_EQ(table.getVar(Role::WEIGHT), nullptr);
  EXPECT_EQ(table.getY(), nullptr);
  EXPECT_EQ(table.getVarsNumeric(Role::V).size(), 2);
  EXPECT_EQ(table.getVarsDouble(Role::V).size(), 1);
  EXPECT_TRUE(table.getVars(Role::WEIGHT).isEmpty());
  EXPECT_EQ(table.getAbsoluteRank(Role::V, 1), 5);
  EXPECT_EQ(table.getRoleByRank(5), Role::V);
  EXPECT_EQ(table.getVarByRank(7), nullptr);
  EXPECT_EQ(table.getAllRoles(), (QStringList{"X", "SN", "V", "CODE", "SELECTION", "V", "SIMU"}));
  EXPECT_EQ(table.getUniqueRoles(), (QStringList{"CODE", "SELECTION", "SIMU", "SN", "V", "X"}));
  EXPECT_EQ(table.getVarByName(QStringLiteral("b")), table.getVar(Role::V, 1));
  EXPECT_EQ(table.getVarNumericByName(QStringLiteral("text")), nullptr);
  EXPECT_EQ(table.getVarNumericByRoleAndName(Role::X, QStringLiteral("b")), nullptr);
  EXPECT_EQ(table.getVarInt64ByStructuralRole(NbdEVarRole::SN), table.getVar(Role::SN));
}

TEST(Table, RefLookupsNameRoleAndIndex)
{
  const NbdDataTable table = makeTable(1);
  try {
    table.getVarDoubleRef(Role::V, 4);
    FAIL();
  } catch (const NbeProgrammingError &error) {
    EXPECT_TRUE(error.getMessage().contains("no variable 4 of role 'V'"))
        << error.getMessage().toStdString();
  }
  EXPECT_THROW(table.getVarInt64Ref(Role::V, 0), NbeProgrammingError);
}

TEST(Table, FindsRealizationsByNameAndMacroIndex)
{
  NbdDataTable table;
  for (int index : {3, 1}) {
    for (const char *name : {"p", "q"}) {
      NbdAVariable *variable =
          table.createVariableNumeric(Role::SIMU, NbdVariableDetails(QString::fromLatin1(name)));
      variable->setMacroIndex(NbdMacroIndexInfo(), NbdMacroIndex(index));
    }
  }
  EXPECT_EQ(table.getVarByMacroIndex(Role::SIMU, "q", NbdMacroIndex(1)), table.getVarByRank(3));
  EXPECT_EQ(table.getVarByMacroIndex(Role::SIMU, "q", NbdMacroIndex(2)), nullptr);
  EXPECT_EQ(table.getVarByMacroIndex(Role::V, "q", NbdMacroIndex(1)), nullptr);
}

TEST(Table, CopiesAreIndependentAndShareUntilWritten)
{
  NbdDataTable table = makeTable(4);
  NbdDataTable copy(table);
  EXPECT_TRUE(copy.getX()->isSharedWith(*table.getX()));
  copy.getX()->setValue(1, 50.);
  copy.setNSamples(2);
  copy.deleteVariable(Role::V, 0);
  expectSamples(table, {0, 1, 2, 3});
  EXPECT_EQ(copy.getX()->getValue(1), 50.);
  EXPECT_EQ(copy.getVar(Role::V, 0)->getName(), "b");

  copy = table;
  copy.detachData();
  EXPECT_FALSE(copy.getX()->isSharedWith(*table.getX()));
  expectSamples(copy, {0, 1, 2, 3});
}

TEST(Table, SortsEveryColumn)
{
  NbdDataTable table = makeTable(5);
  NbdVariableDouble *key = table.getVarDouble(Role::V, 0);
  table.sort(*key, true);
  expectSamples(table, {4, 3, 2, 1, 0});
  table.sort(table.getVarRef(Role::SN), false);
  expectSamples(table, {4, 3, 2, 1, 0});
  table.sort(table.getVarRef(Role::CODE), true);
  expectSamples(table, {0, 1, 2, 3, 4});

  NbdVariableDouble order("outside");
  order.setValues({1., NbbGlobal::D_FFFF, 0., 1., 0.});
  table.sort(order, false);
  expectSamples(table, {0, 3, 2, 4, 1});
  order.resizeAndFill(4);
  EXPECT_THROW(table.sort(order, true), NbeProgrammingError);
}

TEST(Table, SamplesAreRemovedFromEveryColumn)
{
  NbdDataTable table = makeTable(6);
  table.removeSamples(1, 2);
  expectSamples(table, {0, 3, 4, 5});
  table.removeSample(3);
  expectSamples(table, {0, 3, 4});

  NbdVariableSelection &selection = table.getVarSelectionRef(Role::SELECTION);
  selection.setBoolValue(1, false);
  table.compress(selection);
  expectSamples(table, {0, 4});
  EXPECT_EQ(selection.getNSelected(), 2);

  EXPECT_THROW(table.removeSamples(1, 2), NbeProgrammingError);
  EXPECT_THROW(table.removeSamples(-1, 1), NbeProgrammingError);
  EXPECT_THROW(table.compress(NbdVariableSelection("short")), NbeProgrammingError);
}

TEST(Table, NewSamplesAreUndefinedAndSelected)
{
  NbdDataTable table = makeTable(1);
  table.appendSamples(2);
  EXPECT_EQ(table.getNSamples(), 3);
  EXPECT_EQ(table.getVarSelectionRef(Role::SELECTION).getNSelected(), 3);
  EXPECT_EQ(table.getX()->getNUndefined(), 2);
  EXPECT_EQ(table.getVarMultiRef(Role::SIMU).getAllValues(2),
            (QVector<double>{NbbGlobal::D_FFFF, NbbGlobal::D_FFFF}));
  EXPECT_THROW(table.setNSamples(-1), NbeProgrammingError);
  EXPECT_THROW(table.appendSamples(-1), NbeProgrammingError);
}

TEST(Table, AppendsAndCopiesSamplesByRoleAndIndex)
{
  NbdDataTable table = makeTable(2);
  NbdDataTable other = makeTable(5);
  other.removeSamples(0, 2);
  table.appendSamples(other);
  expectSamples(table, {0, 1, 2, 3, 4});
  table.appendSamples(table);
  expectSamples(table, {0, 1, 2, 3, 4, 0, 1, 2, 3, 4});
  table.copyLine(table, 3, 0);
  expectSamples(table.extractSamples({9, 0, 0, 1}), {4, 3, 3, 1});
  EXPECT_THROW(table.extractSamples({10}), NbeProgrammingError);

  NbdDataTable coordinates;
  coordinates.createVariableNumeric(Role::X, NbdVariableDetails("x"), TYPE_FLOAT)->appendValue(7.5);
  coordinates.adjustNSamples();
  table.appendSamples(coordinates);
  EXPECT_EQ(table.getX()->getValue(10), 7.5);
  EXPECT_TRUE(table.getVarRef(Role::V, 0).isUndefined(10));
}

TEST(Table, ColumnsMustHaveOneValuePerSample)
{
  NbdDataTable table;
  NbdVariableDouble variable("v");
  variable.setValues({1., 2.});
  table.addVariable(Role::V, variable);
  EXPECT_EQ(table.getNSamples(), 2);
  EXPECT_EQ(table.createVariableNumeric(Role::V)->getNValues(), 2);
  variable.appendValue(3.);
  EXPECT_THROW(table.addVariable(Role::V, variable), NbeProgrammingError);
  EXPECT_EQ(table.getNVariables(), 2);

  table.getVarDoubleRef(Role::V, 0).appendValue(9.);
  EXPECT_THROW(table.sort(variable, true), NbeProgrammingError);
  table.adjustNSamples();
  EXPECT_EQ(table.getNSamples(), 3);
  EXPECT_TRUE(table.getVarRef(Role::V, 1).isUndefined(2));
}

TEST(Table, ColumnsKeepTheirOrderWithinARole)
{
  NbdDataTable table = makeTable(2);
  table.insertVariable(0, Role::V, std::make_unique<NbdVariableDouble>("first"));
  EXPECT_EQ(table.getVar(Role::V, 0)->getName(), "first");
  EXPECT_EQ(table.getVar(Role::V, 2)->getName(), "b");
  table.setVariableRole(table.getAbsoluteRank(Role::V, 1), Role::RAW);
  EXPECT_EQ(table.getVar(Role::RAW)->getName(), "a");
  EXPECT_EQ(table.getVar(Role::V, 1)->getName(), "b");
  table.deleteColumnByRank(0);
  EXPECT_EQ(table.getRoleCount(Role::V), 1);
  table.deleteVariable(Role::V, 0);
  EXPECT_FALSE(table.hasRole(Role::V));
  EXPECT_THROW(table.deleteVariable(Role::V, 0), NbeProgrammingError);
  EXPECT_THROW(table.setVariableRole(9, Role::V), NbeProgrammingError);
  table.clearTable();
  EXPECT_EQ(table.getNVariables(), 0);
  EXPECT_EQ(table.getNSamples(), 0);
}

TEST(Table, StartsFromTheColumnsOfAnother)
{
  const NbdDataTable model = makeTable(3);
  NbdDataTable table;
  table.initFromTable(model, 2);
  EXPECT_EQ(table.getAllRoles(), model.getAllRoles());
  EXPECT_EQ(table.getNSamples(), 2);
  EXPECT_EQ(table.getX()->getNDefined(), 0);

  table = model;
  table.getVarSelectionRef(Role::SELECTION).setAllValues(0.);
  table.initialize();
  EXPECT_EQ(table.getX()->getNDefined(), 0);
  EXPECT_EQ(table.getVarSelectionRef(Role::SELECTION).getNSelected(), 3);
  expectSamples(model, {0, 1, 2});
}

TEST(Table, StreamsKeepColumnsAndValues)
{
  const NbdDataTable table = makeTable(3);
  NbdDataTable read = makeTable(1);
  test::fromBytes(test::toBytes(table), read);
  expectSamples(read, {0, 1, 2});
  EXPECT_EQ(read.getAllRoles(), table.getAllRoles());
  test::fuzzSerialization(table);
}

TEST(Table, TextsShowColumnsAndValues)
{
  NbdDataTable table;
  table.createVariableNumeric(Role::V, NbdVariableDetails("v"))->appendValue(0.5);
  table.adjustNSamples();
  table.createVariableAlpha(Role::CODE, NbdVariableDetails("t"));
  EXPECT_EQ(table.toString(), "v\tt\n0.5\tN/A\n");
  EXPECT_EQ(table.debug(0),
            "Data table: 1 samples, 2 variables\n  CODE[0] \"t\" ALPHA\n  V[0] \"v\" FLOAT_64\n");
}

TEST(Table, StructuralRolesLeadToRolesAndUnits)
{
  for (const NbdEVarRole &role : NbdEVarRole::getAll())
    EXPECT_FALSE(role.toCalculatorRole().isEmpty());
  EXPECT_EQ(NbdEVarRole::S_TO.toCalculatorRole(), Role::LINE_S_TO);
  EXPECT_EQ(NbdVarRoleHelper::toUnitClass(NbdEVarRole::Z), NbuEUnitClass::ELEVATION);
  EXPECT_EQ(NbdVarRoleHelper::toUnitClass(NbdEVarRole::SN), NbuEUnitClass::NONE);
}
