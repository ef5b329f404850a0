#pragma once

#include "basic/base/NbbGlobal.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/base/NgcAInterpol.h"
#include "geos/interpol/NgcIKriging.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmDriftModel.h"
#include "geos/vmodel/NgmExtDriftModel.h"
#include "geos/vmodel/NgmVModel.h"

#include <QSet>
#include <QVector>

#include <map>
#include <memory>
#include <vector>

class NgmIKrigingPostPro;
class NgmKrigingSystemDual;
struct NgmKrigingSamples;

/// Base of the kriging calculators: an interpolation from a variogram model.
///
/// The estimate of variable t at a target x0, a point or a block, is
///
/// Formula:  Z*_t(x0) = m_t(x0) + sum_v sum_i w_vi (Z_v(x_i) - m_v(x_i)), of least error variance
///           under the conditions of the mode; m are the known means, 0 without any
/// Units:    estimate in units of the variable, variance in squared units
/// Inputs:   role V the variables; EXTDRIFT (also on the output) the external drifts in the order
///           of the external drift model's indices; LOCAL_MEAN (also on the output) the local
///           means; STDEV_MEAS_ERR the measurement errors; COLLOCATED on the output the collocated
///           variables
/// Outputs:  each of the roles below takes one variable per estimated variable:
///           V the estimate; VARIANCE the kriging variance and STDEV its square root, or
///           VARINDICATOR the variance over twice the model's value at 0; VAR_ESTIMATE,
///           COVAR_ZZSTAR, CORREL_ZZSTAR, SLOPE_ZZSTAR, KRIG_EFFIC, SUM_W, SUM_POS_W,
///           WEIGHT_OF_MEAN, LAGRANGE; COVAR_Z1STARZSTAR (one fewer); NEIGH_NUMBER,
///           NEIGH_MEAN_DIST, NEIGH_CODE_NUMBER, NEIGH_SEARCH_INDEX; and, with super kriging,
///           those of getRoleSSDV(), getRoleSpecificVolume(), getRoleCoeffOfVariation()
/// Fails:    no sample around a target -> it stays undefined; an undefined drift or local mean at
///           the target, too few samples for the drift, a singular system -> it stays undefined and
///           is counted, see NgcAInterpol::getNumberOfInterpolErrors()
/// Source:   [Matheron, 1965]; [Journel and Huijbregts, 1978, ch. V]; [Chiles and Delfiner, 2012]
class NgcAKriging : public NgcAInterpol, public NgcIKriging
{
public:
  class Worker;

  ~NgcAKriging() override;

  // NgcIKriging

  void setVarioModel(const NgmVModel &model) override;
  const NgmVModel &getVarioModel() const override { return _model; }
  void setKrigingMode(const NgcEKrigingMode &mode) override;
  void setSimpleKrigingOption(Ngc::SimpleKrigingOption option) override;
  void setSimpleKrigingMean(int variable, double mean) override;
  void setSimpleKrigingVariableOnlyOnTarget(bool only) override;
  void setStDevMeasError(int variable, const QString &name) override;
  void setCollocated(int variable, const QString &name) override;
  const QMap<int, QString> &getAllCollocated() const override { return _collocated; }
  void setCollocatedTransformation(bool transform) override;
  void setLGSModelRotationConvention(bool use, int conventionId) override;
  void setLGSModelRotationForce2D(bool force) override;
  void setMonovariateTransformation(int variable,
                                    const NgmITransformation &transformation) override;
  void setEnableMonovariateTransformation(bool enable) override;
  void setMultivariateTransformation(const NgmIMultivariateTransform &transformation) override;
  void setDriftModel(const NgmDriftModel &model) override;
  void setExtDriftModel(const NgmExtDriftModel &model) override;

  // Settings

  void setKrigingMode(NgcEKrigingMode::EValue mode);

  /// Estimates that were transformed back may be negative; without it they are raised to 0.
  void setEnableNegativeValues(bool enable) { _negativeValues = enable; }
  bool isEnableNegativeValues() const { return _negativeValues; }

  /// Variables whose data are used, but which are not estimated.
  void addExcludedOutputVar(int variable) { _excludedOutputVars.insert(variable); }
  void addExcludedOutputVars(const QSet<int> &variables) { _excludedOutputVars.unite(variables); }
  bool isExcluded(int variable) const { return _excludedOutputVars.contains(variable); }
  const QSet<int> &getExcludedOutputVar() const { return _excludedOutputVars; }

  /// Direct block kriging: the samples are those of a Gaussian variable on point support, centred
  /// in their blocks, and the model is that of the block variable; `r` in ]0, 1] is the support
  /// coefficient of a variable, and the correlation that of the variables at a point.
  /// Source: [Emery and Ortiz, 2005], Geostatistical estimation of mineral resources with soft
  /// geological boundaries and discrete Gaussian change of support
  void setBlockCorrectionCoefficient(int variable, double r);
  double getBlockCorrectionCoefficient(int variable) const;
  bool hasBlockCorrectionCoefficient(int variable) const;
  void setPointGaussianCorrelation(const NgmMatrix &correlation);
  const NgmMatrix &getPointGaussianCorrelation() const { return _pointGaussianCorrelation; }
  bool isDirectBlock() const { return _directBlock; }

  /// The variable of which the weights are kept and the cross-validation is made.
  void setMainVariableIndex(int variable) { _mainVariable = variable; }
  int getMainVariableIndex() const { return _mainVariable; }

  /// The variance is that of the weights as they are, not of optimal ones.
  void setUseKrigingWeights(bool use) { _useKrigingWeights = use; }
  bool useKrigingWeights() const { return _useKrigingWeights; }

  /// Copied. The second is null without any.
  void setGaussianKrigingPostPro(const NgmIKrigingPostPro &postPro);
  const NgmIKrigingPostPro *getGaussianKrigingPostPro() const { return _postPro.get(); }
  bool hasGaussianKrigingPostPro() const { return _postPro != nullptr; }

  // Roles

  static QString getRoleSSDV();
  static QString getRoleSpecificVolume();
  static QString getRoleCoeffOfVariation();

  /// Roles that are read from the output data set, and those of them that may be averaged from
  /// finer targets to coarser ones.
  QStringList getInputRolesInOutputDataset() const;
  QStringList getUpScalableRoles() const;

  // What was set

  const NgcEKrigingMode &getKrigingMode() const { return _mode; }
  const NgmDriftModel &getDriftModel() const { return _driftModel; }
  const NgmExtDriftModel &getExtDriftModel() const { return _extDriftModel; }
  virtual bool isSimpleKriging() const;
  bool isRescaledCokriging() const;
  Ngc::SimpleKrigingOption getSimpleKrigingOption() const { return _simpleKrigingOption; }
  bool isSimpleKrigingVarsOnlyOnTarget() const { return _meansOnlyOnTarget; }

  /// 0 for a variable without a given mean.
  double getSimpleKrigingMean(int variable) const;

  /// There are known means that are not 0.
  bool needMeanCorrection() const;

  /// Drift functions and external drifts; 0 in simple kriging.
  int getNDriftEquations() const;
  bool isCollocatedTransformation() const { return _collocatedTransformation; }
  bool isSuperKriging() const { return _superKriging; }
  double getProductionVolume() const { return _productionVolume; }
  double getTheoreticalMean() const { return _theoreticalMean; }

  bool isFilteringComponentsEnabled() const;
  bool isFilteringNugget() const { return _filterNugget; }
  const QList<int> &getFilteringStructuresList() const { return _filteredStructures; }
  bool isFilteringDrifts() const { return _filterDrifts; }

  bool isUsingMonoTransfo(int variable) const;
  const NgmITransformation &getMonoTransfo(int variable) const;
  bool isEnableMonoTransfo() const { return _monoTransfosEnabled; }
  bool isUsingMultiTransfo() const { return _multiTransfo != nullptr; }
  const NgmIMultivariateTransform &getMultiTransfo() const;

  bool isUsingLGSModelRotationConvention() const { return _lgsUseConvention; }
  int getLGSModelRotationConvention() const { return _lgsConvention; }
  bool getLGSModelRotationForce2D() const { return _lgsForce2D; }

  /// The measurement errors (collocated variables) of a table of samples (targets), by the index of
  /// the variable that they belong to.
  QMap<int, NbdAVariableNumeric *> getStDevMeasErrorsVariables(const NbdDataTable &table) const;
  QMap<int, NbdAVariableNumeric *> getCollocatedVariables(const NbdDataTable &table) const;

  /// The system of a unique neighborhood, built once per run; null with a moving one and when there
  /// is no sample.
  const NgmKrigingSystemDual *getKrigingSystemDual() const { return _systemDual.get(); }

  /// The samples of the parcel under way give no system of a unique neighborhood: too few for the
  /// drift, as the text then says, or a singular system.
  bool hasUniqueSystemFailed() const { return _uniqueFailed; }
  const QString &getUniqueDriftError() const { return _uniqueDriftError; }

  /// Its companion of simple kriging, for the weights of the mean; null when nobody asks for them
  /// and when it is singular.
  const NgmKrigingSystemDual *getCompanionSystemDual() const { return _companionDual.get(); }

  /// Number of interpolated variables.
  int getNVariables() const { return _model.getNVariables(); }

  /// Local means are known at the targets and not at the samples.
  bool hasMeansOfTargetsOnly() const;

  // During a run.

  /// The model without the filtered components.
  const NgmVModel &getEstimatedModel() const { return _filteredModel ? *_filteredModel : _model; }

  /// Variances of the means of blocks of a fixed size, by variable.
  const QVector<double> &getBlockVariances() const { return _blockVariances; }

protected:
  explicit NgcAKriging(const QString &key);

  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  void _preLaunchThreads() override;

  /// Roles of the output that take one variable per interpolated, or per estimated, variable.
  virtual QStringList _getOutputRoles() const;

  void _setFilterNugget(bool filter) { _filterNugget = filter; }
  void _addFilterStructure(int structure);
  void _setFilterDrifts(bool filter) { _filterDrifts = filter; }
  void _setSuperKriging(bool superKriging) { _superKriging = superKriging; }
  void _setProductionVolume(double volume) { _productionVolume = volume; }
  void _setTheoreticalMean(double mean) { _theoreticalMean = mean; }

private:
  void _checkSettings() const;
  void _checkMeans() const;
  void _addInputRules();
  void _addTargetRules();
  void _addOutputRules();
  void _addOutputRule(const QString &role, int nVariables, int nEstimated);
  bool _hasOutput() const;
  void _setModelContext();

  /// Extension of the field, which fixes the constant of generalized covariances.
  double _calcFieldSize() const;
  void _checkMeasurementErrors() const;
  void _checkCollocated() const;
  void _prepareModels();
  void _buildUniqueKrigingSystem();
  bool _buildSystemOfData(NgmKrigingSystemDual &system, const NgmKrigingSamples &samples);
  void _buildCompanionSystem(const NgmKrigingSamples &samples);

  NgmVModel _model;
  NgmDriftModel _driftModel;
  NgmExtDriftModel _extDriftModel;
  NgcEKrigingMode _mode = NgcEKrigingMode::ORDINARY_KRIGING;
  Ngc::SimpleKrigingOption _simpleKrigingOption = Ngc::SIMPLE_KRIGING_CONSTANT_MEAN;
  QVector<double> _means;
  bool _meansOnlyOnTarget = false;
  QMap<int, QString> _measurementErrors;
  QMap<int, QString> _collocated;
  bool _collocatedTransformation = false;
  NgmMatrix _pointGaussianCorrelation;
  QMap<int, double> _blockCorrectionCoefficients;
  bool _directBlock = false;
  std::map<int, std::unique_ptr<NgmITransformation>> _monoTransfos;
  bool _monoTransfosEnabled = false;
  std::unique_ptr<NgmIMultivariateTransform> _multiTransfo;
  bool _lgsUseConvention = false;
  int _lgsConvention = 0;
  bool _lgsForce2D = false;
  bool _negativeValues = false;
  QSet<int> _excludedOutputVars;
  int _mainVariable = 0;
  bool _filterNugget = false;
  QList<int> _filteredStructures;
  bool _filterDrifts = false;
  bool _superKriging = false;
  double _productionVolume = NbbGlobal::D_FFFF;
  double _theoreticalMean = NbbGlobal::D_FFFF;
  bool _useKrigingWeights = false;
  std::unique_ptr<NgmIKrigingPostPro> _postPro;

  std::unique_ptr<NgmVModel> _filteredModel;
  QVector<double> _blockVariances;
  std::unique_ptr<NgmKrigingSystemDual> _systemDual;
  std::unique_ptr<NgmKrigingSystemDual> _companionDual;
  bool _uniqueFailed = false;
  QString _uniqueDriftError;
};
