#include "basic/data/Nbd.h"

namespace Nbd {
namespace Role {

const QString V = QStringLiteral("V");
const QString V_CAT = QStringLiteral("V_CAT");
const QString VINPUT = QStringLiteral("VINPUT");
const QString VOUTPUT = QStringLiteral("VOUTPUT");
const QString VSTAT = QStringLiteral("VSTAT");
const QString VDOMAIN = QStringLiteral("VDOMAIN");
const QString VARIO = QStringLiteral("VARIO");
const QString RAW = QStringLiteral("RAW");
const QString GAUSSIAN = QStringLiteral("GAUSSIAN");
const QString ENUM = QStringLiteral("ENUM");
const QString CODE = QStringLiteral("CODE");
const QString GROUP = QStringLiteral("GROUP");
const QString MASK = QStringLiteral("MASK");
const QString SELECTION = QStringLiteral("SELECTION");
const QString HIGHLIGHT = QStringLiteral("HIGHLIGHT");
const QString CLUSTERED = QStringLiteral("CLUSTERED");
const QString PPMT = QStringLiteral("PPMT");

const QString X = QStringLiteral("X");
const QString Y = QStringLiteral("Y");
const QString Z = QStringLiteral("Z");
const QString IX = QStringLiteral("IX");
const QString IY = QStringLiteral("IY");
const QString IZ = QStringLiteral("IZ");
const QString IJK = QStringLiteral("IJK");
const QString SN = QStringLiteral("SN");
const QString SN1 = QStringLiteral("SN1");
const QString SN2 = QStringLiteral("SN2");
const QString SN_KEY = QStringLiteral("SN_KEY");
const QString OBJECT_ID = QStringLiteral("OBJECT_ID");
const QString RANK = QStringLiteral("RANK");
const QString N = QStringLiteral("N");
const QString M = QStringLiteral("M");
const QString NEWX = QStringLiteral("NEWX");
const QString NEWY = QStringLiteral("NEWY");
const QString NEWZ = QStringLiteral("NEWZ");
const QString GX = QStringLiteral("GX");
const QString GY = QStringLiteral("GY");
const QString GZ = QStringLiteral("GZ");
const QString TX = QStringLiteral("TX");
const QString TY = QStringLiteral("TY");
const QString TZ = QStringLiteral("TZ");
const QString ELEVATION = QStringLiteral("ELEVATION");
const QString DIP = QStringLiteral("DIP");
const QString AZIMUTH = QStringLiteral("AZIMUTH");

const QString LINE_S = QStringLiteral("LINE_S");
const QString LINE_S_FROM = QStringLiteral("LINE_S_FROM");
const QString LINE_S_TO = QStringLiteral("LINE_S_TO");
const QString LINE_LENGTH = QStringLiteral("LINE_LENGTH");
const QString LINE_REGUL_AL = QStringLiteral("LINE_REGUL_AL");
const QString LINE_REGUL_PROP = QStringLiteral("LINE_REGUL_PROP");
const QString LINE_REGUL_KEEP_SELECTION = QStringLiteral("LINE_REGUL_KEEP_SELECTION");

const QString BLOCK_CENTROID = QStringLiteral("BLOCK_CENTROID");
const QString BLOCK_SIZE = QStringLiteral("BLOCK_SIZE");
const QString BLOCK_TOPNE = QStringLiteral("BLOCK_TOPNE");
const QString BLOCK_TOPNW = QStringLiteral("BLOCK_TOPNW");
const QString BLOCK_TOPSE = QStringLiteral("BLOCK_TOPSE");
const QString BLOCK_TOPSW = QStringLiteral("BLOCK_TOPSW");
const QString BLOCK_BOTNE = QStringLiteral("BLOCK_BOTNE");
const QString BLOCK_BOTNW = QStringLiteral("BLOCK_BOTNW");
const QString BLOCK_BOTSE = QStringLiteral("BLOCK_BOTSE");
const QString BLOCK_BOTSW = QStringLiteral("BLOCK_BOTSW");
const QString CELL_VOLUME = QStringLiteral("CELL_VOLUME");

const QString ESTIMATE = QStringLiteral("ESTIMATE");
const QString STDEV = QStringLiteral("STDEV");
const QString VAR_ESTIMATE = QStringLiteral("VAR_ESTIMATE");
const QString VARIANCE = QStringLiteral("VARIANCE");
const QString LAGRANGE = QStringLiteral("LAGRANGE");
const QString SUM_W = QStringLiteral("SUM_W");
const QString SUM_POS_W = QStringLiteral("SUM_POS_W");
const QString WEIGHT_OF_MEAN = QStringLiteral("WEIGHT_OF_MEAN");
const QString KRIG_EFFIC = QStringLiteral("KRIG_EFFIC");
const QString SLOPE_ZZSTAR = QStringLiteral("SLOPE_ZZSTAR");
const QString COVAR_ZZSTAR = QStringLiteral("COVAR_ZZSTAR");
const QString COVAR_Z1STARZSTAR = QStringLiteral("COVAR_Z1STARZSTAR");
const QString CORREL_ZZSTAR = QStringLiteral("CORREL_ZZSTAR");
const QString LOCAL_MEAN = QStringLiteral("LOCAL_MEAN");
const QString KNOWN_DRIFT = QStringLiteral("KNOWN_DRIFT");
const QString EXTDRIFT = QStringLiteral("EXTDRIFT");
const QString COLLOCATED = QStringLiteral("COLLOCATED");
const QString STDEV_MEAS_ERR = QStringLiteral("STDEV_MEAS_ERR");
const QString CONFINT_MIN = QStringLiteral("CONFINT_MIN");
const QString CONFINT_MAX = QStringLiteral("CONFINT_MAX");
const QString CONFINT_WIDTH = QStringLiteral("CONFINT_WIDTH");
const QString DISTANCE = QStringLiteral("DISTANCE");

const QString XVAL_ERR = QStringLiteral("XVAL_ERR");
const QString XVAL_ST_ERR = QStringLiteral("XVAL_ST_ERR");
const QString XVAL_SQ_ERR = QStringLiteral("XVAL_SQ_ERR");
const QString XVAL_SQ_ST_ERR = QStringLiteral("XVAL_SQ_ST_ERR");

const QString NEIGH_NUMBER = QStringLiteral("NEIGH_NUMBER");
const QString NEIGH_CODE_NUMBER = QStringLiteral("NEIGH_CODE_NUMBER");
const QString NEIGH_SEARCH_INDEX = QStringLiteral("NEIGH_SEARCH_INDEX");
const QString NEIGH_STATUS_CODE = QStringLiteral("NEIGH_STATUS_CODE");
const QString NEIGH_MEAN = QStringLiteral("NEIGH_MEAN");
const QString NEIGH_MIN = QStringLiteral("NEIGH_MIN");
const QString NEIGH_MAX = QStringLiteral("NEIGH_MAX");
const QString NEIGH_VARIANCE = QStringLiteral("NEIGH_VARIANCE");
const QString NEIGH_STDEV = QStringLiteral("NEIGH_STDEV");
const QString NEIGH_SUM_W = QStringLiteral("NEIGH_SUM_W");
const QString NEIGH_QUANTILE = QStringLiteral("NEIGH_QUANTILE");
const QString NEIGH_CORRELATION = QStringLiteral("NEIGH_CORRELATION");
const QString NEIGH_PROX_PAIR = QStringLiteral("NEIGH_PROX_PAIR");
const QString NEIGH_MEAN_DIST = QStringLiteral("NEIGH_MEAN_DIST");
const QString NEIGH_MEAN_DIST_ANISO = QStringLiteral("NEIGH_MEAN_DIST_ANISO");
const QString NEIGH_NEAREST_DIST = QStringLiteral("NEIGH_NEAREST_DIST");
const QString NEIGH_NEAREST_DIST_ANISO = QStringLiteral("NEIGH_NEAREST_DIST_ANISO");
const QString NEIGH_NEAREST_SN = QStringLiteral("NEIGH_NEAREST_SN");
const QString NEIGH_NEAREST_SN_ANISO = QStringLiteral("NEIGH_NEAREST_SN_ANISO");
const QString NEIGH_NEAREST_V = QStringLiteral("NEIGH_NEAREST_V");
const QString NEIGH_FURTHEST_DIST = QStringLiteral("NEIGH_FURTHEST_DIST");
const QString NEIGH_FURTHEST_DIST_ANISO = QStringLiteral("NEIGH_FURTHEST_DIST_ANISO");
const QString NEIGH_FURTHEST_SN = QStringLiteral("NEIGH_FURTHEST_SN");
const QString NEIGH_FURTHEST_SN_ANISO = QStringLiteral("NEIGH_FURTHEST_SN_ANISO");
const QString NEIGH_FURTHEST_V = QStringLiteral("NEIGH_FURTHEST_V");
const QString NEIGH_CAT_NUMBER = QStringLiteral("NEIGH_CAT_NUMBER");
const QString NEIGH_CAT_NUMBER_USED = QStringLiteral("NEIGH_CAT_NUMBER_USED");
const QString NEIGH_CAT_PROPORTION = QStringLiteral("NEIGH_CAT_PROPORTION");

const QString MEAN = QStringLiteral("MEAN");
const QString MINIMUM = QStringLiteral("MINIMUM");
const QString MAXIMUM = QStringLiteral("MAXIMUM");
const QString QUANTILE = QStringLiteral("QUANTILE");
const QString PROBABILITY = QStringLiteral("PROBABILITY");
const QString PROBA_CATEGORY = QStringLiteral("PROBA_CATEGORY");
const QString PROPORTION = QStringLiteral("PROPORTION");
const QString CORRELATION = QStringLiteral("CORRELATION");
const QString REGRESSION = QStringLiteral("REGRESSION");
const QString EXPLANATORY = QStringLiteral("EXPLANATORY");
const QString RESIDUAL = QStringLiteral("RESIDUAL");
const QString NPAIRS = QStringLiteral("NPAIRS");
const QString WEIGHT = QStringLiteral("WEIGHT");
const QString VARINDICATOR = QStringLiteral("VARINDICATOR");
const QString SMALL_CUTOFF = QStringLiteral("SMALL_CUTOFF");
const QString LARGE_CUTOFF = QStringLiteral("LARGE_CUTOFF");
const QString MEAN_THRESHOLD = QStringLiteral("MEAN_THRESHOLD");
const QString ACCU_THRESHOLD = QStringLiteral("ACCU_THRESHOLD");

const QString SIMU = QStringLiteral("SIMU");
const QString GAUSS_SIMU = QStringLiteral("GAUSS_SIMU");
const QString POINTS_SIMU = QStringLiteral("POINTS_SIMU");
const QString POINTS_GAUSS_SIMU = QStringLiteral("POINTS_GAUSS_SIMU");

const QString TONNAGE = QStringLiteral("TONNAGE");
const QString METAL = QStringLiteral("METAL");
const QString DENSITY = QStringLiteral("DENSITY");
const QString SOARES = QStringLiteral("SOARES");

const QString ISOPOT = QStringLiteral("ISOPOT");
const QString CONTACT = QStringLiteral("CONTACT");
const QString AUXILIARY = QStringLiteral("AUXILIARY");

bool isCoordinate(const QString &role)
{
  return role == X || role == Y || role == Z;
}

bool isSN(const QString &role)
{
  return role == SN;
}

}  // namespace Role

namespace Dataset {

const QString INPUT = QStringLiteral("INPUT");
const QString OUTPUT = QStringLiteral("OUTPUT");
const QString INOUT = QStringLiteral("INOUT");
const QString SURVEY = QStringLiteral("SURVEY");

}  // namespace Dataset

}  // namespace Nbd
