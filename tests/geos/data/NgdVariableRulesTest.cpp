#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "NgdVariableRulesRun.h"
#include "basic/data/NbdEMacroIndexType.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/data/NgdDataSetPoints.h"
#include "support/Errors.h"
#include "support/TestData.h"

using testsupport::errorOf;
using testsupport::expectAssertion;
using testsupport::PrintedMessages;

namespace {

const QString path = QStringLiteral("data\\NgdVariableRules");
const QString a = QStringLiteral("A");
const QString b = QStringLiteral("B");
const QString in = QStringLiteral("IN");
const QString out = QStringLiteral("OUT");

QString text(const char *latin1)
{
  return QString::fromLatin1(latin1);
}

QList<NbdMacroIndex> integers(const std::vector<int> &values)
{
  QList<NbdMacroIndex> indices;
  for (int value : values)
    indices << NbdMacroIndex(value);
  return indices;
}

/// Two data sets A and B over one file, with macros and the rules of a calculator.
struct Fixture
{
  Fixture()
  {
    for (NgdDataSetPoints *dataSet : {&setA, &setB})
      dataSet->setDataProvider(provider);
    rules.registerDataSet(a, &setA);
    rules.registerDataSet(b, &setB);
  }

  QString addMacro(const char *name, const std::vector<int> &indices)
  {
    const QString id = provider->addMacro(text(name), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
    for (int index : indices)
      provider->addRealization(id, NbdMacroIndex(index), std::vector<double>(5, index));
    return id;
  }

  void bindVariable(NgdADataSet &dataSet, const QString &role)
  {
    dataSet.assignVariable(role, provider->getIdFromName(text("Z1")));
  }

  void declareMacro(const QString &id, const QString &role, Nbd::EAccessType access)
  {
    rules.registerRoleMacro(id, role, access, Nbd::TYPE_NONE);
  }

  void prepare() { NgdVariableRulesRun(rules).prepare(); }

  void expectFailure(const char *condition)
  {
    expectAssertion(path, text(condition), [&] { prepare(); });
    rules.deleteTmpVariables();
  }

  QSharedPointer<NbpMemoryProviderPointsW> provider = testsupport::makePoints(5);
  NgdDataSetPoints setA, setB;
  NgdVariableRules rules;
};

}  // namespace

TEST(NgdVariableRules, RegistrationsAreChecked)
{
  Fixture f;
  NgdVariableRules &rules = f.rules;
  const auto reg = [&](const QString &id, const QString &role) {
    rules.registerRole(id, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE);
  };
  reg(a, in);
  reg(b, in);
  rules.setRuleMacroIndexInfo(a, in, NbdMacroIndexInfo());
  rules.setRuleMacroIndices(a, in, {});
  rules.setRuleMacroByPiece(a, in, false);
  rules.setLinkTo(a, in, b, in);

  struct Case
  {
    const char *condition;
    std::function<void()> action;
  };
  for (const Case &c : std::vector<Case>{
           {"Dataset id '' is invalid", [&] { rules.registerDataSet(QString(), &f.setA); }},
           {"Can't register null dataset with id 'A'", [&] { rules.registerDataSet(a, nullptr); }},
           {"Dataset id '' is invalid", [&] { reg(QString(), in); }},
           {"Role '' is invalid", [&] { reg(a, QString()); }},
           {"Role 'A/OUT' should be registered before adding cardinality rules",
            [&] { rules.addRuleCount(a, out, 0, 1); }},
           {"Incompatible cardinality rules for role 'A/IN': minimum was 2 while maximum was 1",
            [&] { rules.addRuleCount(a, in, 2, 1); }},
           {"Role 'B/OUT' should be registered before adding cardinality rules",
            [&] { rules.addRuleCountMatch(a, in, b, out); }},
           {"Role 'A/OUT' should be registered before adding macro index info rule",
            [&] { rules.setRuleMacroIndexInfo(a, out, NbdMacroIndexInfo()); }},
           {"Role 'A/IN' have already defined macro index info rule",
            [&] { rules.setRuleMacroIndexInfo(a, in, NbdMacroIndexInfo()); }},
           {"Role 'A/OUT' should be registered before adding macro indices rule",
            [&] { rules.setRuleMacroIndices(a, out, {}); }},
           {"Role 'A/IN' have already defined macro indices rule",
            [&] { rules.setRuleMacroIndices(a, in, {}); }},
           {"Role 'A/OUT' should be registered before adding macro by piece rule",
            [&] { rules.setRuleMacroByPiece(a, out, true); }},
           {"Role 'A/IN' have already defined macro by piece rule",
            [&] { rules.setRuleMacroByPiece(a, in, true); }},
           {"Role 'A/OUT' should be registered before adding link rule",
            [&] { rules.setLinkTo(a, out, b, in); }},
           {"Role 'A/IN' have already a link", [&] { rules.setLinkTo(a, in, b, in); }},
           {"no valid indices", [&] { rules.getNIndicesForLoop(); }}})
    expectAssertion(path, text(c.condition), c.action);
  EXPECT_EQ(Nbd::LOOP_NONE, rules.getLoopPolicy());
}

TEST(NgdVariableRules, RoleChecksStopAtTheFirstFailure)
{
  struct Case
  {
    const char *condition;
    std::function<void(Fixture &)> setUp;
    int nPrinted;
  };
  const auto reg = [](Fixture &f, const QString &id, const QString &role) {
    f.rules.registerRole(id, role, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
  };
  for (const Case &c : std::vector<Case>{
           {"The dataset 'C' is referenced but not defined.",
            [&](Fixture &f) { reg(f, text("C"), in); }, 0},
           {"In the dataset 'A' the number of variables associated to role 'IN' is invalid.\n"
            "Number of variables = 1\nExpected number = [2,INF]",
            [&](Fixture &f) {
              reg(f, a, in);
              f.bindVariable(f.setA, in);
              f.rules.addRuleCount(a, in, 2, -1);
            },
            2},
           {"In the dataset 'A' the number of variables associated to role 'IN' is invalid.\n"
            "Number of variables = 2\nExpected number = [0,1]",
            [&](Fixture &f) {
              reg(f, a, in);
              f.bindVariable(f.setA, in);
              f.bindVariable(f.setA, in);
              f.rules.addRuleCount(a, in, 0, 1);
            },
            2},
           {"In the dataset 'A' the number of variables with role 'IN' is not equal to the number "
            "of variable with role OUT in the dataset 'B'",
            [&](Fixture &f) {
              reg(f, a, in);
              reg(f, b, out);
              f.bindVariable(f.setB, out);
              f.rules.addRuleCountMatch(a, in, b, out);
            },
            2},
           {" In the dataset 'A' Variable of invalid type assigned to role 'IN'. Expected type: "
            "macro-variable",
            [&](Fixture &f) {
              f.declareMacro(a, in, Nbd::ACCESS_READ);
              f.bindVariable(f.setA, in);
            },
            2},
           {" In the dataset 'A' Variable of invalid type assigned to role 'IN'. Expected type: "
            "variable",
            [&](Fixture &f) {
              reg(f, a, in);
              f.setA.assignMacro(in, f.addMacro("M", {1}));
            },
            2}}) {
    Fixture f;
    c.setUp(f);
    PrintedMessages messages;
    f.expectFailure(c.condition);
    EXPECT_EQ(c.nPrinted, messages.texts.size());
    for (const QString &title : messages.texts.mid(0, c.nPrinted / 2)) {
      EXPECT_TRUE(title.startsWith(text("NgdVariableRules::_checkRoles error: dataset")));
    }
  }

  // A reference that was never set is missed even when both counts would be 0.
  NgdVariableRules rules;
  NgdDataSetPoints dataSet;
  rules.registerDataSet(a, &dataSet);
  rules.registerRole(a, in, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
  rules.checkConsistency();
  rules.registerRole(text("Z"), in, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
  rules.addRuleCountMatch(a, in, text("Z"), in);
  expectAssertion(path,
                  text("An invalid reference has been found for the rule 'MustMatch'\n"
                       "The missing referenced dataset is 'Z'"),
                  [&] { rules.checkConsistency(); });
}

TEST(NgdVariableRules, AccessAndTypeReachTheDescriptors)
{
  Fixture f;
  f.rules.registerRole(a, in, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE);
  f.rules.registerRole(a, in, Nbd::ACCESS_WRITE, Nbd::TYPE_FLOAT);  // the later one holds
  f.rules.registerRole(a, out, Nbd::ACCESS_READ_WRITE, Nbd::TYPE_NONE);
  f.bindVariable(f.setA, in);
  f.bindVariable(f.setA, out);
  f.rules.addRuleCount(a, in, 1, 1);
  f.prepare();
  EXPECT_EQ(Nbd::ACCESS_WRITE, f.setA.getDataDescriptor(in, 0).getAccessType());
  EXPECT_EQ(Nbd::TYPE_FLOAT, f.setA.getDataDescriptor(in, 0).getVariableType());
  EXPECT_EQ(Nbd::TYPE_DOUBLE, f.setA.getDataDescriptor(out, 0).getVariableType());
  f.rules.openAllVariables();
  EXPECT_TRUE(f.setA.isOpened() && f.setB.isOpened());
  f.rules.closeAllVariables();
  EXPECT_FALSE(f.setA.isOpened() || f.setB.isOpened());
}

TEST(NgdVariableRules, MacrosByPieceLoopOverTheirCommonIndices)
{
  Fixture f;
  f.declareMacro(a, in, Nbd::ACCESS_READ);
  f.declareMacro(b, in, Nbd::ACCESS_READ);
  f.declareMacro(b, out, Nbd::ACCESS_WRITE);
  f.setA.assignMacro(in, f.addMacro("M1", {4, 1, 3, 2}));
  f.setB.assignMacro(in, f.addMacro("M2", {1, 2, 4, 7}));
  f.setB.assignTemporaryMacro(out, text("__TMP_M"), Nbd::TYPE_DOUBLE);
  f.rules.setRuleMacroByPiece(a, in, true);
  f.rules.setRuleMacroByPiece(b, in, true);
  f.rules.setLinkTo(b, out, a, in);
  for (int run = 0; run < 2; ++run) {  // a run starts from the provider's indices again
    f.prepare();
    EXPECT_EQ(Nbd::LOOP_ON_INDICES, f.rules.getLoopPolicy());
    EXPECT_EQ(3, f.rules.getNIndicesForLoop());
    EXPECT_EQ(integers({1, 2, 4}), f.rules.getIndicesForLoop());
    for (const NgdVariableDescriptor &macro :
         {f.setA.getDataDescriptor(in, 0), f.setB.getDataDescriptor(in, 0),
          f.setB.getDataDescriptor(out, 0)}) {
      EXPECT_EQ(integers({1, 2, 4}), macro.getIndices());
      EXPECT_EQ(1, macro.getNRealizationsPerLoop());
      EXPECT_EQ(64, macro.getBitLength());
    }
    QList<NbdMacroIndex> created;
    EXPECT_TRUE(f.provider->getMacroIndices(f.setB.getVariableId(out, 0), created));
    EXPECT_EQ(3, created.size());
    f.rules.deleteTmpVariables();
  }
}

TEST(NgdVariableRules, OutputMacrosReceiveTheRealizationsTheyLack)
{
  Fixture f;
  f.declareMacro(a, in, Nbd::ACCESS_READ);
  f.declareMacro(a, out, Nbd::ACCESS_WRITE);
  f.declareMacro(b, out, Nbd::ACCESS_WRITE);
  const QString source = f.addMacro("M1", {1, 2, 3}), target = f.addMacro("M2", {2});
  const QString free = f.addMacro("M3", {});
  f.setA.assignMacro(in, source);
  f.setA.assignMacro(out, target);
  f.setB.assignMacro(out, free);
  f.rules.setLinkTo(a, out, a, in);
  f.rules.setRuleMacroIndices(b, out, integers({5, 6}));
  f.prepare();
  QList<NbdMacroIndex> indices;
  EXPECT_TRUE(f.provider->getMacroIndices(target, indices));
  EXPECT_EQ(3, indices.size());
  EXPECT_EQ(3, f.setA.getNRealizationsWithRole(out));
  EXPECT_TRUE(f.provider->getMacroIndices(free, indices));
  EXPECT_EQ(integers({5, 6}), indices);

  // The realization that was there keeps its values.
  NbdVariableDouble values;
  values.resizeAndFill(5);
  EXPECT_TRUE(f.provider->readVariable(f.provider->getRealizationId(target, NbdMacroIndex(2)),
                                       NbiIntervalIntLarge(0, 4), values, 0));
  EXPECT_EQ(2., values.getValue(0));
}

TEST(NgdVariableRules, TemporaryMacrosFollowTheIndicesOfEachRun)
{
  Fixture f;
  f.declareMacro(a, in, Nbd::ACCESS_READ);
  f.declareMacro(a, out, Nbd::ACCESS_WRITE);
  f.rules.setLinkTo(a, out, a, in);
  f.setA.assignTemporaryMacro(out, text("__TMP_M"), Nbd::TYPE_DOUBLE);
  f.setA.assignMacro(in, f.addMacro("M1", {1, 2}));
  f.prepare();
  f.rules.deleteTmpVariables();

  const NbdMacroIndex dry(text("dry"));
  const QString named = f.provider->addMacro(text("M2"), Nbd::TYPE_DOUBLE,
                                             NbdMacroIndexInfo(NbdEMacroIndexType::STRING));
  f.provider->addRealization(named, dry, std::vector<double>(5, 0.));
  f.setA.clearRole(in);
  f.setA.assignMacro(in, named);
  f.prepare();
  QList<NbdMacroIndex> created;
  EXPECT_TRUE(f.provider->getMacroIndices(f.setA.getVariableId(out, 0), created));
  EXPECT_EQ(QList<NbdMacroIndex>{dry}, created);
  f.rules.deleteTmpVariables();
}

TEST(NgdVariableRules, LinkOfPlainVariablesIsIdle)
{
  Fixture f;
  for (const QString &role : {in, out}) {
    f.rules.registerRoleVariableOrMacro(a, role, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
    f.bindVariable(f.setA, role);
  }
  f.rules.setLinkTo(a, out, a, in);
  f.prepare();
  EXPECT_EQ(Nbd::LOOP_NONE, f.rules.getLoopPolicy());
}

TEST(NgdVariableRules, WrongMacroRulesAreRefused)
{
  const NbdMacroIndexInfo strings(NbdEMacroIndexType::STRING);
  struct Case
  {
    const char *condition;
    std::function<void(Fixture &)> setUp;
  };
  const auto plain = [](Fixture &f) {
    f.rules.registerRole(a, in, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
    f.bindVariable(f.setA, in);
  };
  const auto macro = [](Fixture &f) {
    f.declareMacro(a, in, Nbd::ACCESS_READ);
    f.setA.assignMacro(in, f.addMacro("M", {1, 2}));
  };
  const auto linked = [&](Fixture &f) {
    macro(f);
    f.declareMacro(b, in, Nbd::ACCESS_READ);
    f.setB.assignMacro(in, f.addMacro("N", {1, 2}));
    f.rules.setLinkTo(a, in, b, in);
  };
  for (const Case &c : std::vector<Case>{
           {"Role 'A/IN' has macro info rule but has not been declared as a macro",
            [&](Fixture &f) {
              plain(f);
              f.rules.setRuleMacroIndexInfo(a, in, NbdMacroIndexInfo());
            }},
           {"Role 'A/IN' has macro indices rule but has not been declared as a macro",
            [&](Fixture &f) {
              plain(f);
              f.rules.setRuleMacroIndices(a, in, integers({1}));
            }},
           {"Role 'A/IN' has macro by piece rule but has not been declared as a macro",
            [&](Fixture &f) {
              plain(f);
              f.rules.setRuleMacroByPiece(a, in, true);
            }},
           {"Role 'A/IN' is linked and should not have macro index info rule",
            [&](Fixture &f) {
              linked(f);
              f.rules.setRuleMacroIndexInfo(a, in, NbdMacroIndexInfo());
            }},
           {"Role 'A/IN' is linked and should not have macro indices rule",
            [&](Fixture &f) {
              linked(f);
              f.rules.setRuleMacroIndices(a, in, integers({1}));
            }},
           {"Role 'A/IN' is linked and should not have macro by piece rule",
            [&](Fixture &f) {
              linked(f);
              f.rules.setRuleMacroByPiece(a, in, true);
            }},
           {"Wrong macro index info for macro 'M' for role 'A/IN'",
            [&](Fixture &f) {
              macro(f);
              f.rules.setRuleMacroIndexInfo(a, in, strings);
            }},
           {"Wrong list of macro indices for macro 'M' for role 'A/IN'",
            [&](Fixture &f) {
              macro(f);
              f.rules.setRuleMacroIndices(a, in, integers({1, 3}));
            }},
           {"Reference role 'B/IN' is not available in the dataset 'B' while being used as a "
            "reference for a macro link",
            [&](Fixture &f) {
              macro(f);
              f.rules.setLinkTo(a, in, b, in);
            }},
           {"Linked role 'A/IN' has not been declared as a macro",
            [&](Fixture &f) {
              plain(f);
              f.rules.setLinkTo(a, in, b, in);
            }},
           {"Reference role 'B/IN' has not been declared as a macro",
            [&](Fixture &f) {
              macro(f);
              f.rules.registerRole(b, in, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
              f.bindVariable(f.setB, in);
              f.rules.setLinkTo(a, in, b, in);
            }},
           {"Detected a cycle between role 'A/IN' and 'B/IN'",
            [&](Fixture &f) {
              linked(f);
              f.rules.setLinkTo(b, in, a, in);
            }},
           // A/IN leads into the cycle without being part of it.
           {"Detected a cycle between role 'B/IN' and 'B/OUT'",
            [&](Fixture &f) {
              linked(f);
              f.declareMacro(b, out, Nbd::ACCESS_READ);
              f.setB.assignMacro(out, f.addMacro("O", {1, 2}));
              f.rules.setLinkTo(b, in, b, out);
              f.rules.setLinkTo(b, out, b, in);
            }},
           {"Role 'B/IN' is used as reference but not all macros have same macro indices",
            [&](Fixture &f) {
              linked(f);
              f.setB.assignMacro(in, f.addMacro("O", {1}));
            }},
           {"Role 'B/IN' is used as reference but not all macros have same macro index info",
            [&](Fixture &f) {
              linked(f);
              const NbdMacroIndexInfo named(NbdEMacroIndexType(), text("Year"));
              const QString id = f.provider->addMacro(text("O"), Nbd::TYPE_DOUBLE, named);
              for (int index : {1, 2})
                f.provider->addRealization(id, NbdMacroIndex(index), std::vector<double>(5, 0.));
              f.setB.assignMacro(in, id);
            }},
           {"Missing indices for macro 'M' for linked role 'A/IN'",
            [&](Fixture &f) {
              macro(f);
              f.declareMacro(b, in, Nbd::ACCESS_READ);
              f.setB.assignMacro(in, f.addMacro("N", {1, 2, 3}));
              f.rules.setLinkTo(a, in, b, in);
            }},
           {"There are no common indices in your multi-realization variables.", [&](Fixture &f) {
              macro(f);
              f.declareMacro(b, in, Nbd::ACCESS_READ);
              f.setB.assignMacro(in, f.addMacro("N", {3}));
              f.rules.setRuleMacroByPiece(a, in, true);
              f.rules.setRuleMacroByPiece(b, in, true);
            }}}) {
    Fixture f;
    c.setUp(f);
    f.expectFailure(c.condition);
  }
}

TEST(NgdVariableDescriptor, BitLengthsFollowTypeAndRealizations)
{
  const QString descriptorPath = text("data\\NgdVariableDescriptor");
  NgdVariableDescriptor variable(text("V"));
  EXPECT_EQ(text("V"), variable.getProviderVarId());
  EXPECT_EQ(text("V"), variable.getIndexName(0));
  EXPECT_EQ(integers({1}), variable.getIndices());
  const std::vector<std::pair<Nbd::EVariableType, int>> lengths = {
      {Nbd::TYPE_FLOAT, 32},      {Nbd::TYPE_DOUBLE, 64},      {Nbd::TYPE_INT32, 32},
      {Nbd::TYPE_INT64, 64},      {Nbd::TYPE_BOOLEAN, 1},      {Nbd::TYPE_ALPHA, 400},
      {Nbd::TYPE_RESERVED_64, 0}, {Nbd::TYPE_RESERVED_128, 0}, {Nbd::TYPE_MULTI_FLOAT, 32},
      {Nbd::TYPE_POINT, 192},     {Nbd::TYPE_ENUM, 16},        {Nbd::TYPE_COLOR, 32}};
  for (const auto &length : lengths) {
    variable.setVariableType(length.first);
    EXPECT_EQ(length.second, variable.getBitLength());
  }
  variable.setVariableType(Nbd::TYPE_NONE);
  expectAssertion(descriptorPath, text("Undefined type should not be encountered here."),
                  [&] { variable.getBitLength(); });
  expectAssertion(descriptorPath, text("not a macro."),
                  [&] { variable.setIndices(NbdMacroIndexInfo(), {}); });

  NgdVariableDescriptor macro;
  macro.setIsMacro(true);
  macro.setVariableType(Nbd::TYPE_DOUBLE);
  EXPECT_EQ(64, macro.getBitLength());
  macro.setIndices(NbdMacroIndexInfo(), integers({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(640, macro.getBitLength());
  EXPECT_EQ(text("10"), macro.getIndexName(9));
  macro.setMultiByPiece(true);
  EXPECT_EQ(64, macro.getBitLength());
  EXPECT_TRUE(macro.isNumeric());
  EXPECT_FALSE(macro.isCategorical());
  EXPECT_THROW(macro.setIndices(NbdMacroIndexInfo(), {NbdMacroIndex(text("one"))}), NbeError);
  EXPECT_EQ(10, macro.getNRealizations());
}
