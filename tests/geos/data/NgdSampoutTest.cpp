#include "geos/data/NgdSampout.h"

#include "geos/data/NgdVariableRules.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "support/Errors.h"
#include "support/SampoutFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using testsupport::errorOf;
using testsupport::SampoutFile;

namespace {

struct OpenSampout
{
  explicit OpenSampout(SampoutFile &file)
  {
    for (const QString &role : file.dataSet.getAllRoles()) {
      if (!Nbd::Role::isCoordinate(role) && !Nbd::Role::isSN(role))
        file.dataSet.setAccessType(role, Nbd::ACCESS_WRITE);
    }
    file.dataSet.openAllVariables();
    sampout.setDataSet(&file.dataSet);
    context.reset(sampout.initWorker(false));
  }

  /// A row of one target, without auxiliary values.
  void add(const NbgVector3D &location, double weight = 0.5)
  {
    NgdSampout::Neighbor neighbor;
    neighbor.location = location;
    neighbor.variableName = QStringLiteral("GRADE");
    neighbor.value = 7.;
    neighbor.weight = weight;
    sampout.addNeighbor(*context, neighbor, {}, {});
  }

  NgdSampout sampout;
  std::unique_ptr<NgdSampout::ThreadContext> context;
};

NgmNeighborhoodMoving ellipsoid(const NbgVector3D &radii, const NbgRotation &rotation)
{
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize(radii);
  parameters.setEllipseRotation(rotation);
  return parameters;
}

}  // namespace

TEST(NgdSampout, AppendsTheRowsOfATargetAtItsEnd)
{
  SampoutFile file;
  OpenSampout open(file);
  open.context->setTarget({10., 20., 30.});
  open.add({13., 24., 30.}, 0.75);
  open.add({10., 20., 42.}, 0.25);
  EXPECT_EQ(file.getNRows(), 0);
  open.sampout.sampoutEndTarget(*open.context);
  EXPECT_EQ(file.getNRows(), 2);

  // A target without neighbors writes none; the next one follows.
  open.context->setTarget({0., 0., 0.});
  open.sampout.sampoutEndTarget(*open.context);
  EXPECT_EQ(file.getNRows(), 2);
  open.add({1., 0., 0.}, 1.);
  open.sampout.sampoutEndTarget(*open.context);

  const std::vector<double> none = {NbbGlobal::D_FFFF, NbbGlobal::D_FFFF, NbbGlobal::D_FFFF};
  EXPECT_EQ(file.values("cx"), (std::vector<double>{10., 10., 0.}));
  EXPECT_EQ(file.values("cz"), (std::vector<double>{30., 30., 0.}));
  EXPECT_EQ(file.values("nx"), (std::vector<double>{13., 10., 1.}));
  EXPECT_EQ(file.values("nz"), (std::vector<double>{30., 42., 0.}));
  EXPECT_EQ(file.values("value"), (std::vector<double>{7., 7., 7.}));
  EXPECT_EQ(file.values("weight"), (std::vector<double>{0.75, 0.25, 1.}));
  EXPECT_EQ(file.values("euclid"), (std::vector<double>{5., 12., 1.}));
  EXPECT_EQ(file.texts("name"), (std::vector<std::string>{"GRADE", "GRADE", "GRADE"}));
}

TEST(NgdSampout, MeasuresDistancesInTheSearchEllipsoid)
{
  SampoutFile file;
  OpenSampout open(file);
  // The long axis points along (3, 4, 0) / 5: the neighbor at 2.5 radii of it.
  const NbgRotation rotation(std::atan2(4., 3.) * 180. / M_PI, 0., 0.);
  open.context->setSearchEllipsoid(ellipsoid({2., 1., 4.}, rotation));
  open.context->setTarget({1., 1., 1.});
  open.add({4., 5., 1.});
  open.add({1. - 0.8, 1. + 0.6, 1. + 4.});  // one radius across, one up
  open.sampout.sampoutEndTarget(*open.context);

  open.context.reset(open.sampout.initWorker(true));
  open.context->setSearchEllipsoid(ellipsoid({2., 1., 4.}, rotation));
  open.context->setTarget({1., 1., 1.});
  open.add({1. - 0.8, 1. + 0.6, 1. + 4.});
  open.sampout.sampoutEndTarget(*open.context);

  const std::vector<double> distances = file.values("aniso");
  EXPECT_NEAR(distances[0], 2.5, 1e-12);  // a rotation and a root
  EXPECT_NEAR(distances[1], std::sqrt(2.), 1e-12);
  EXPECT_NEAR(distances[2], 1., 1e-12);
}

TEST(NgdSampout, GivesTheCentreOfTheBlockModelCell)
{
  SampoutFile file;
  OpenSampout open(file);
  const NbgRotation rotation(30., 0., 0.);
  const NbgVector3D origin(100., 200., 5.), cell(10., 20., 5.);
  open.sampout.setBlockModelGridGeom(origin, cell, rotation);
  const NbgVector3D center = origin + rotation.localToWorld({30., -40., 5.});
  open.context->setTarget(center + rotation.localToWorld({4.9, -9.9, 2.4}));
  open.add({0., 0., 0.});
  open.sampout.sampoutEndTarget(*open.context);
  EXPECT_NEAR(file.values("cx")[0], center.x(), 1e-10);  // two rotations of lengths of 100
  EXPECT_NEAR(file.values("cy")[0], center.y(), 1e-10);
  EXPECT_NEAR(file.values("cz")[0], center.z(), 1e-10);
}

TEST(NgdSampout, FillsAuxiliaryVariablesByName)
{
  SampoutFile file;
  for (const char *name : {"I_GRADE", "O_GRADE", "GRADE", "I_NONE"})
    file.add(NgdSampout::getRoleAuxiliary(), name);
  for (const char *name : {"I-ROCK", "O-ROCK", "ROCK"})
    file.add(NgdSampout::getRoleAuxiliaryString(), name, Nbd::TYPE_ALPHA);
  file.add(NgdSampout::getRoleCode(), "code", Nbd::TYPE_INT32);
  OpenSampout open(file);
  ASSERT_TRUE(open.context->hasAuxiliary());
  NgdSampout::Neighbor neighbor;
  NgdSampout::Auxiliary input, output;
  input.values = {{QStringLiteral("GRADE"), 1.5}};
  output.values = {{QStringLiteral("GRADE"), 2.5}, {QStringLiteral("NONE"), 3.}};
  input.texts = {{QStringLiteral("ROCK"), QStringLiteral("ore")}};
  open.sampout.addNeighbor(*open.context, neighbor, input, output);
  open.sampout.sampoutEndTarget(*open.context);
  EXPECT_EQ(file.values("I_GRADE")[0], 1.5);
  EXPECT_EQ(file.values("O_GRADE")[0], 2.5);
  EXPECT_EQ(file.values("GRADE")[0], NbbGlobal::D_FFFF);
  EXPECT_EQ(file.values("I_NONE")[0], NbbGlobal::D_FFFF);
  EXPECT_EQ(file.values("weight")[0], NbbGlobal::D_FFFF);
  EXPECT_EQ(file.values("code")[0], NbbGlobal::D_FFFF);
  EXPECT_EQ(file.texts("I-ROCK")[0], "ore");
  EXPECT_EQ(file.texts("O-ROCK")[0], "");
  EXPECT_EQ(file.texts("ROCK")[0], "");

  SampoutFile shortName;
  shortName.add(NgdSampout::getRoleAuxiliary(), "IX");
  OpenSampout refusing(shortName);
  EXPECT_EQ(errorOf([&] {
              refusing.add({0., 0., 0.});
            }),
            QStringLiteral("Invalid auxiliary variable name for the sampout file."));
}

TEST(NgdSampout, DeclaresItsRoles)
{
  NgdSampout sampout;
  NgdVariableRules empty;
  EXPECT_EQ(errorOf([&] { sampout.registerInterpolConstraints(empty); }),
            QStringLiteral("NgdSampout::addRuntimeConstraints: no dataset defined"));
  EXPECT_EQ(errorOf([&] { sampout.initWorker(false); }),
            QStringLiteral("NgdSampout::init: no sampout dataset"));

  const auto check = [&sampout](SampoutFile &file) {
    sampout.setDataSet(&file.dataSet);
    NgdVariableRules rules;
    rules.registerDataSet(NgdSampout::getDatasetId(), &file.dataSet);
    sampout.registerInterpolConstraints(rules);
    sampout.registerKrigingConstraints(rules);
    return errorOf([&] { rules.checkConsistency(); });
  };
  SampoutFile file;
  EXPECT_EQ(check(file), QStringLiteral("nothing thrown"));
  sampout.setHasRhs(true);
  EXPECT_TRUE(check(file).contains(QStringLiteral("'ROLE_RHS'")));
  file.add(NgdSampout::getRoleRhs(), "rhs");
  EXPECT_EQ(check(file), QStringLiteral("nothing thrown"));
  sampout.setHasRhs(false);
  EXPECT_TRUE(check(file).contains(QStringLiteral("Expected number = [0,0]")));
  file.add(NgdSampout::getRoleGradeValue(), "second");
  EXPECT_TRUE(check(file).contains(QStringLiteral("'ROLE_GRADE_VALUE'")));
}
