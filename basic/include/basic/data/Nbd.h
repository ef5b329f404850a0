#pragma once

#include <QString>

/// Names and codes of the data layer: value types, access, roles of variables and of data sets.
namespace Nbd {

/// How a calculator uses a variable.
enum EAccessType { ACCESS_READ = 0, ACCESS_WRITE = 1, ACCESS_READ_WRITE = 2 };

/// Value type of a variable. Codes 64 and 128 are carried without storage.
enum EVariableType {
  TYPE_NONE = 0,
  TYPE_FLOAT = 1,
  TYPE_DOUBLE = 2,
  TYPE_INT32 = 4,
  TYPE_INT64 = 8,
  TYPE_BOOLEAN = 16,
  TYPE_ALPHA = 32,
  TYPE_RESERVED_64 = 64,
  TYPE_RESERVED_128 = 128,
  TYPE_MULTI_FLOAT = 256,
  TYPE_POINT = 512,
  TYPE_ENUM = 1024,
  TYPE_COLOR = 2048
};

/// Whether buffers are visited once per macro index.
enum ELoopPolicy { LOOP_NONE = 0, LOOP_ON_INDICES = 1 };

/// What a variable stands for in a calculation. The value of each name is its own text.
namespace Role {

// Values.
extern const QString V;
extern const QString V_CAT;
extern const QString VINPUT;
extern const QString VOUTPUT;
extern const QString VSTAT;
extern const QString VDOMAIN;
extern const QString VARIO;
extern const QString RAW;
extern const QString GAUSSIAN;
extern const QString ENUM;
extern const QString CODE;
extern const QString GROUP;
extern const QString MASK;
extern const QString SELECTION;
extern const QString HIGHLIGHT;
extern const QString CLUSTERED;
extern const QString PPMT;

// Coordinates and identity.
extern const QString X;
extern const QString Y;
extern const QString Z;
extern const QString IX;
extern const QString IY;
extern const QString IZ;
extern const QString IJK;
extern const QString SN;
extern const QString SN1;
extern const QString SN2;
extern const QString SN_KEY;
extern const QString OBJECT_ID;
extern const QString RANK;
extern const QString N;
extern const QString M;
extern const QString NEWX;
extern const QString NEWY;
extern const QString NEWZ;
extern const QString GX;
extern const QString GY;
extern const QString GZ;
extern const QString TX;
extern const QString TY;
extern const QString TZ;
extern const QString ELEVATION;
extern const QString DIP;
extern const QString AZIMUTH;

// Lines.
extern const QString LINE_S;
extern const QString LINE_S_FROM;
extern const QString LINE_S_TO;
extern const QString LINE_LENGTH;
extern const QString LINE_REGUL_AL;
extern const QString LINE_REGUL_PROP;
extern const QString LINE_REGUL_KEEP_SELECTION;

// Blocks.
extern const QString BLOCK_CENTROID;
extern const QString BLOCK_SIZE;
extern const QString BLOCK_TOPNE;
extern const QString BLOCK_TOPNW;
extern const QString BLOCK_TOPSE;
extern const QString BLOCK_TOPSW;
extern const QString BLOCK_BOTNE;
extern const QString BLOCK_BOTNW;
extern const QString BLOCK_BOTSE;
extern const QString BLOCK_BOTSW;
extern const QString CELL_VOLUME;

// Estimation outputs.
extern const QString ESTIMATE;
extern const QString STDEV;
extern const QString VAR_ESTIMATE;
extern const QString VARIANCE;
extern const QString LAGRANGE;
extern const QString SUM_W;
extern const QString SUM_POS_W;
extern const QString WEIGHT_OF_MEAN;
extern const QString KRIG_EFFIC;
extern const QString SLOPE_ZZSTAR;
extern const QString COVAR_ZZSTAR;
extern const QString COVAR_Z1STARZSTAR;
extern const QString CORREL_ZZSTAR;
extern const QString LOCAL_MEAN;
extern const QString KNOWN_DRIFT;
extern const QString EXTDRIFT;
extern const QString COLLOCATED;
extern const QString STDEV_MEAS_ERR;
extern const QString CONFINT_MIN;
extern const QString CONFINT_MAX;
extern const QString CONFINT_WIDTH;
extern const QString DISTANCE;

// Cross-validation.
extern const QString XVAL_ERR;
extern const QString XVAL_ST_ERR;
extern const QString XVAL_SQ_ERR;
extern const QString XVAL_SQ_ST_ERR;

// Neighborhood diagnostics.
extern const QString NEIGH_NUMBER;
extern const QString NEIGH_CODE_NUMBER;
extern const QString NEIGH_SEARCH_INDEX;
extern const QString NEIGH_STATUS_CODE;
extern const QString NEIGH_MEAN;
extern const QString NEIGH_MIN;
extern const QString NEIGH_MAX;
extern const QString NEIGH_VARIANCE;
extern const QString NEIGH_STDEV;
extern const QString NEIGH_SUM_W;
extern const QString NEIGH_QUANTILE;
extern const QString NEIGH_CORRELATION;
extern const QString NEIGH_PROX_PAIR;
extern const QString NEIGH_MEAN_DIST;
extern const QString NEIGH_MEAN_DIST_ANISO;
extern const QString NEIGH_NEAREST_DIST;
extern const QString NEIGH_NEAREST_DIST_ANISO;
extern const QString NEIGH_NEAREST_SN;
extern const QString NEIGH_NEAREST_SN_ANISO;
extern const QString NEIGH_NEAREST_V;
extern const QString NEIGH_FURTHEST_DIST;
extern const QString NEIGH_FURTHEST_DIST_ANISO;
extern const QString NEIGH_FURTHEST_SN;
extern const QString NEIGH_FURTHEST_SN_ANISO;
extern const QString NEIGH_FURTHEST_V;
extern const QString NEIGH_CAT_NUMBER;
extern const QString NEIGH_CAT_NUMBER_USED;
extern const QString NEIGH_CAT_PROPORTION;

// Statistics and post-processing.
extern const QString MEAN;
extern const QString MINIMUM;
extern const QString MAXIMUM;
extern const QString QUANTILE;
extern const QString PROBABILITY;
extern const QString PROBA_CATEGORY;
extern const QString PROPORTION;
extern const QString CORRELATION;
extern const QString REGRESSION;
extern const QString EXPLANATORY;
extern const QString RESIDUAL;
extern const QString NPAIRS;
extern const QString WEIGHT;
extern const QString VARINDICATOR;
extern const QString SMALL_CUTOFF;
extern const QString LARGE_CUTOFF;
extern const QString MEAN_THRESHOLD;
extern const QString ACCU_THRESHOLD;

// Simulation.
extern const QString SIMU;
extern const QString GAUSS_SIMU;
extern const QString POINTS_SIMU;
extern const QString POINTS_GAUSS_SIMU;

// Mining.
extern const QString TONNAGE;
extern const QString METAL;
extern const QString DENSITY;
extern const QString SOARES;

// Geology.
extern const QString ISOPOT;
extern const QString CONTACT;
extern const QString AUXILIARY;

/// X, Y or Z.
bool isCoordinate(const QString &role);

/// SN only.
bool isSN(const QString &role);

}  // namespace Role

/// What a data set stands for in a calculation.
namespace Dataset {

extern const QString INPUT;
extern const QString OUTPUT;
extern const QString INOUT;
extern const QString SURVEY;

}  // namespace Dataset

}  // namespace Nbd
