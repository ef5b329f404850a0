#pragma once

#include "geos/base/NgcACalculatorComposite.h"
#include "geos/base/NgcIInterpol.h"
#include "geos/base/NgcISampoutInterpol.h"
#include "geos/interpol/NgcIKriging.h"

#include <QMap>
#include <QSet>
#include <QStringList>

#include <memory>

class NgcAKriging;
class NgcCentering;
class NgcEFaultsMode;
class NgcERejectionAuxVarOption;
class NgcERejectionMode;
class NgcInterpolExtMig;
class NgdDataSetGrid;
class NgmIKrigingPostPro;
class NgmMatrix;
class NgmNeighborhoodFaultSet;

/// Base of the composite kriging calculators: steps that prepare the data, then the kriging.
///
/// Settings go to the kriging. Before it come
/// - the external data migration, when there are external grids: their variables are brought to the
///   samples, and to the targets unless the output has them, by linear interpolation between node
///   centres;
/// - where the derived class wants it, and with direct block kriging: the samples are moved to the
///   centres of their blocks, the cells of the output grid.
///
/// What the steps write are temporary variables of the input and the output, and a copy of the
/// samples in memory: both data files must be writable for the first.
class NgcAKrigingExt : public NgcACalculatorComposite,
                       public NgcIInterpol,
                       public NgcIKriging,
                       public NgcISampoutInterpol
{
public:
  ~NgcAKrigingExt() override;

  /// The grid holds variables of the roles, external drifts usually. They stand behind the
  /// variables that the input has under these roles, in the order of the calls.
  void addExternalInDataset(const QStringList &roles, const NgdDataSetGrid &grid);

  // NgcIInterpol

  void setInputDataSet(const NgdADataSet &dataSet) override;
  void setOutputDataSet(const NgdADataSet &dataSet) override;
  const NgdADataSet *getInputDataset() const override;
  const NgdADataSet *getOutputDataset() const override;
  void setSupportPoint() override;
  void setSupportBlock(const NgmABlock &block) override;
  void setSupportBlockVarSize(bool varies) override;
  void setUsingUniqueNeighborhood() override;
  void setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters) override;
  void addMovingAlternativeParameters(const NgmNeighborhoodNestedParam &change) override;
  void setParcelling(const NbgIntVector3D &sizes, const NbgVector3D &extension) override;
  void setOnErrorBehavior(Ngc::OnErrorBehavior behavior) override;
  int getNumberOfInterpolErrors() const override;
  QString getInterpolErrorsMessage() const override;
  const NgdANeighborhood &getConstNeighborhood() const override;
  NgdSampout *getSampout() const override;
  void setEnableLGS(bool enable) override;
  void setLGSNeighRotationConvention(bool use, int conventionId) override;
  void setLGSNeighRotationForce2D(bool force) override;

  // NgcISampoutInterpol

  void setSampoutDataSet(const NgdADataSet &dataSet) override;

  // NgcIKriging

  void setVarioModel(const NgmVModel &model) override;
  const NgmVModel &getVarioModel() const override;
  void setKrigingMode(const NgcEKrigingMode &mode) override;
  void setSimpleKrigingOption(Ngc::SimpleKrigingOption option) override;
  void setSimpleKrigingMean(int variable, double mean) override;
  void setSimpleKrigingVariableOnlyOnTarget(bool only) override;
  void setStDevMeasError(int variable, const QString &name) override;
  void setCollocated(int variable, const QString &name) override;
  const QMap<int, QString> &getAllCollocated() const override;
  void setCollocatedTransformation(bool transform) override;
  void setLGSModelRotationConvention(bool use, int conventionId) override;
  void setLGSModelRotationForce2D(bool force) override;
  void setMonovariateTransformation(int variable,
                                    const NgmITransformation &transformation) override;
  void setEnableMonovariateTransformation(bool enable) override;
  void setMultivariateTransformation(const NgmIMultivariateTransform &transformation) override;
  void setDriftModel(const NgmDriftModel &model) override;
  void setExtDriftModel(const NgmExtDriftModel &model) override;

  // Other settings, as those of NgcAKriging and NgcAInterpol.

  void setEnableNegativeValues(bool enable);
  void addExcludedOutputVar(int variable);
  void addExcludedOutputVars(const QSet<int> &variables);
  void setMainVariableIndex(int variable);
  void setUseKrigingWeights(bool use);
  void setFaultsData(const NgmNeighborhoodFaultSet &faults, const NgcEFaultsMode &mode);
  void setWeightsDataset(const NgdADataSet &dataSet);
  void setPerformStatistics(const QString &role);

  /// The kriging, for its results.
  const NgcAKriging &getKriging() const { return *_kriging; }

protected:
  /// Takes the kriging; `step` is the progress message while it runs.
  NgcAKrigingExt(NgcAKriging *kriging, const QString &step, bool centers);

  NgcAKriging &_getKriging() const { return *_kriging; }

  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  bool _prepareProgressable(const QString &id) override;
  void _progressableFinished(const QString &id) override;

  /// Everything that a run does before the kriging, for a test of one target: between the two the
  /// kriging has its data sets.
  void _beginTest();
  void _endTest();

private:
  bool _isTargetServed(const QString &role) const;
  bool _sharesFile() const;
  void _assignTemporaries();
  bool _prepareMigration(NgcInterpolExtMig &migration, const QString &dataSetRole);
  void _prepareCentering();

  NgcAKriging *_kriging;
  NgcInterpolExtMig *_toSamples;
  NgcInterpolExtMig *_toTargets;
  NgcCentering *_centering;
  bool _centers;
  QMap<QString, int> _externalCounts;   // by role
  std::unique_ptr<NgdADataSet> _input;  // as given; those of a run have the temporary variables
  std::unique_ptr<NgdADataSet> _output;
};
