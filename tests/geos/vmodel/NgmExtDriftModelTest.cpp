#include "geos/vmodel/NgmExtDriftModel.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "support/Errors.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

namespace {

NgmExtDriftModel makeModel()
{
  NgmExtDriftModel model;
  model.addDrift(0, 2);
  model.addDrift(0, 2);
  model.addDrift(1, 2);
  model.addDrift(0, 0);
  return model;
}

TEST(NgmExtDriftModel, CountsTermsAndDriftVariables)
{
  NgmExtDriftModel model;
  model.addDrift(0, 2);
  model.addDrift(0, 2);
  EXPECT_EQ(model.getNDriftEquations(), 1);
  EXPECT_EQ(model.getNActiveDriftVariables(), 1);
  model.addDrift(1, 2);
  EXPECT_EQ(model.getNDriftEquations(), 2);
  EXPECT_EQ(model.getNActiveDriftVariables(), 1);
  model.addDrift(0, 0);
  EXPECT_EQ(model.getNActiveDriftVariables(), 2);
  EXPECT_EQ(model.getNDriftVariables(), 2);
  EXPECT_EQ(model.getDriftIndices(0), (QList<int>{2, 0}));
  EXPECT_EQ(model.getNDriftEquations(0), 2);
  EXPECT_EQ(model.getVariable(1), 1);
  EXPECT_TRUE(model.isAssociated(1, 2));
  EXPECT_FALSE(model.isAssociated(1, 0));
  EXPECT_EQ(model.briefSummary(), QStringLiteral("External Drifts: Nb vars=2"));
  EXPECT_EQ(NgmExtDriftModel().getNDriftVariables(), 0);
}

TEST(NgmExtDriftModel, TakesItsValuesFromTheDriftVariables)
{
  const NgmExtDriftModel model = makeModel();
  NbdVariableDouble first(QStringLiteral("A")), unused(QStringLiteral("B"));
  NbdVariableFloat third(QStringLiteral("C"));
  first.setVector({1., NbbGlobal::D_FFFF});
  unused.setVector({0., 0.});
  third.setValues({0.5, 7.});
  const QList<NbdAVariableNumeric *> drifts{&first, &unused, &third};
  QVector<double> values;
  model.getDriftValuesAtDataPoints(0, 0, drifts, values);
  EXPECT_EQ(values, (QVector<double>{0.5, 7.}));
  model.getDriftValuesAtDataPoints(2, 0, drifts, values);
  EXPECT_EQ(values, (QVector<double>{1., NbbGlobal::D_FFFF}));
  model.getDriftValuesAtDataPoints(1, 0, drifts, values);
  EXPECT_EQ(values, (QVector<double>{0., 0.}));
  EXPECT_EQ(model.getDriftValueAtTarget(0, 0, {1., 2., 3.}), 3.);
  EXPECT_EQ(model.getDriftValueAtTarget(1, 0, {1., 2., 3.}), 0.);

  const QString path = QStringLiteral("vmodel\\NgmExtDriftModel");
  for (const QList<NbdAVariableNumeric *> &tooFew : {QList<NbdAVariableNumeric *>(), {&first}})
    testsupport::expectAssertion(path, QStringLiteral("No drift variable found."),
                                 [&] { model.getDriftValuesAtDataPoints(0, 0, tooFew, values); });
  EXPECT_THROW(model.getDriftValueAtTarget(0, 0, {1.}), NbeError);
  EXPECT_THROW(model.getDriftValueAtTarget(3, 0, {1., 2., 3.}), NbeError);
}

TEST(NgmExtDriftModel, ComesBackFromItsStream)
{
  const NgmExtDriftModel model = makeModel();
  NgmExtDriftModel other;
  other.addDrift(5, 5);
  test::fuzzSerialization(model, other);
  test::fromBytes(test::toBytes(model), other);
  EXPECT_EQ(other.debug(0), model.debug(0));
  EXPECT_EQ(test::toBytes(model).mid(4).toHex(),
            QByteArray("00029ad1"  // version 170705
                       "00000002"
                       "00000003"
                       "00000000"
                       "00000002"
                       "00000001"
                       "00000002"
                       "00000000"
                       "00000000"));
  const QString text = model.debug(0);
  for (const char *part :
       {"Total Number of Ext. Drifts Equations = 3\n", "Variable #1", "<=>", "Ext Drift #2"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
}

}  // namespace
