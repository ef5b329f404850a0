#include "app/job/ModelFile.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/SerializationFuzz.h"

#include <gmock/gmock.h>

#include <random>

using namespace orvenal;
using testing::HasSubstr;

namespace {

/// Models as users write them.
struct Case
{
  const char *text;
  int nDimensions;
  int nVariables;
};

const Case cases[] = {
    {R"({"nugget": 0.05, "structures": [{"type": "Spherical", "sill": 0.59, "range": 897}]})", 2,
     1},
    {R"({"nugget": 0.1})", 2, 1},
    {R"({"structures": [{"type": "Exponential", "sill": 0.3, "ranges": [1234.5, 77.7],
        "azimuth": 33.3}, {"type": "Stable", "sill": 7, "range": 0.1, "parameter": 1.3}]})",
     2, 1},
    {R"({"dimensions": 3, "structures": [{"type": "Bessel-K", "sill": 0.3,
        "ranges": [300.1, 200.7, 17.3], "azimuth": 123.4, "dip": 17.6, "pitch": -8.1,
        "parameter": 0.7}]})",
     3, 1},
    {R"({"dimensions": 3, "structures": [{"type": "Cubic", "sill": 2, "range": 10.1}]})", 3, 1},
    {R"({"nugget": [[0.1, 0.05], [0.05, 0.2]], "structures": [{"type": "Gaussian", "sill":
        [[1.1, 0.3], [0.3, 0.7]], "ranges": [3, 7], "azimuth": -10}]})",
     2, 2},
    {R"({"structures": [{"type": "Power", "sill": 3, "ranges": [300, 100], "azimuth": 20,
        "parameter": 1.4}]})",
     2, 1},
};

std::string messageOf(const std::function<void()> &action)
{
  try {
    action();
  } catch (const NbeUserError &error) {
    return error.getMessage().toStdString();
  }
  return "no error";
}

}  // namespace

TEST(ModelFile, BothFormsAreReadBackToTheSameBits)
{
  const apptest::Folder folder;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.text);
    const NgmVModel given = readModelFile(folder.write("given.json", c.text), "given.json",
                                          c.nDimensions, c.nVariables);
    for (const QString &name : {QString("m.json"), QString("m.bin")}) {
      const QString file = folder.write(name, modelToBytes(name, given, c.nDimensions));
      const NgmVModel read = readModelFile(file, name, c.nDimensions, c.nVariables);
      EXPECT_EQ(test::toBytes(read), test::toBytes(given)) << qPrintable(name);
      // without being told of what kind it is
      EXPECT_EQ(test::toBytes(readModelFile(file, name)), test::toBytes(given));
      EXPECT_EQ(modelToBytes(name, read, c.nDimensions), apptest::readFile(file));
    }
  }
}

/// Ranges whose last digits are lost when they are computed from scale and anisotropy.
TEST(ModelFile, KeepsTheBitsOfAnyRangesAndAngles)
{
  std::mt19937 generator(11);
  std::uniform_real_distribution<double> lengths(1., 1000.);
  std::uniform_real_distribution<double> angles(-180., 180.);
  const apptest::Folder folder;
  for (int i = 0; i < 40; ++i) {
    QJsonObject structure{{"type", i % 2 ? "Exponential" : "Gaussian"}, {"sill", 1}};
    structure["ranges"] = QJsonArray{lengths(generator), lengths(generator), lengths(generator)};
    structure["azimuth"] = angles(generator);
    structure["dip"] = angles(generator) / 2.;
    structure["pitch"] = angles(generator);
    const QByteArray text =
        QJsonDocument(QJsonObject{{"structures", QJsonArray{structure}}}).toJson();
    const NgmVModel given = readModelFile(folder.write("g.json", text), "g.json", 3, 1);
    const QString copy = folder.write("c.json", modelToBytes("c.json", given, 3));
    ASSERT_EQ(test::toBytes(readModelFile(copy, "c.json", 3, 1)), test::toBytes(given))
        << text.constData() << apptest::readFile(copy).constData();
  }
}

TEST(ModelFile, RefusesWhatIsDamagedOrOfAnotherKind)
{
  const apptest::Folder folder;
  const NgmVModel model = readModelFile(folder.write("m.json", cases[0].text), "m.json", 2, 1);
  const QByteArray bytes = modelToBytes("m.bin", model, 2);
  const auto messageFor = [&](const QByteArray &content) {
    const QString file = folder.write("m.bin", content);
    return messageOf([&] { readModelFile(file, "m.bin", 2, 1); });
  };
  for (int i = 0; i < bytes.size(); i += 3) {
    QByteArray damaged = bytes;
    damaged[i] = char(damaged[i] ^ 0x10);
    ASSERT_THAT(messageFor(damaged), HasSubstr("m.bin: ")) << i;
    ASSERT_THAT(messageFor(bytes.left(i)), HasSubstr("m.bin: ")) << i;
  }
  EXPECT_THAT(messageFor(bytes + 'x'), HasSubstr("m.bin: the model is damaged: "));
  EXPECT_THAT(messageFor("{}"), HasSubstr("m.bin: not a binary model of this program"));
  EXPECT_EQ(messageFor(bytes), "no error");

  const QString file = folder.write("m.bin", bytes);
  EXPECT_THAT(messageOf([&] { readModelFile(file, "m.bin", 3, 1); }),
              HasSubstr("m.bin: the model has 2 dimensions, the samples have 3"));
  EXPECT_THAT(messageOf([&] { readModelFile(file, "m.bin", 2, 2); }),
              HasSubstr("m.bin: the model has 1 variables, the job has 2"));
  EXPECT_THAT(messageOf([&] { readModelFile("/nowhere/m.bin", "m.bin", 2, 1); }),
              HasSubstr("m.bin: cannot be read: "));
  EXPECT_THROW(readModelFile(folder.write("x.json", "{\"nugget\": -1}"), "x.json", 2, 1),
               UsageError);
}

TEST(ModelFile, AFittedModelIsTheOneThatItsFilesHold)
{
  const apptest::Folder folder;
  for (const QString &name : {QString("m.json"), QString("m.bin")}) {
    apptest::MeuseJob job;
    job.remove("model").remove("grid").remove("neighborhood").remove("output");
    job.set("variogram", apptest::json("{\"regular\": 4}"))
        .set("fit", apptest::json("{}"))
        .set("output.fit.model", name);
    const apptest::Outcome outcome =
        apptest::runProgram({"fit", job.writeTo(folder, name + ".job.json")});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  }
  EXPECT_EQ(test::toBytes(readModelFile(folder.path("m.json"), "m.json", 2, 1)),
            test::toBytes(readModelFile(folder.path("m.bin"), "m.bin", 2, 1)));
}
