#ifndef OMBRIX_BENCH_MODELS_MODELS_H
#define OMBRIX_BENCH_MODELS_MODELS_H

#include <ombrix/ombrix.h>

#include <string>

/// The models of the published families that have no example program. Each function reads an
/// instance, plain or gzip, and leaves an open model whose decisions have names; a file of the
/// wrong form is a std::runtime_error that names the place. A decision "x_3_7" belongs to row 3 and
/// column 7 of what the function documents; numbers count from 0 unless the file has its own.
namespace bench {

/// Adds the constraints, the objective and the decisions of the instance to an empty model.
using Build = void (*)(ombrix::OXModel& model, const std::string& fileName);

/// x_j_i: job j runs on agent i.
void buildGap(ombrix::OXModel& model, const std::string& fileName);
/// x_c_f: facility f serves customer c.
void buildSscfl(ombrix::OXModel& model, const std::string& fileName);
/// Gives the closed model a start with few facilities open: from many the search does not find the
/// way, as closing one takes a move of each of its customers.
void startSscfl(ombrix::OXModel& model, const std::string& fileName);
/// x_v: vertex v is a median.
void buildPmed(ombrix::OXModel& model, const std::string& fileName);
/// The names of the columns of the file.
void buildMip01(ombrix::OXModel& model, const std::string& fileName);
/// x_v: vertex v is in the clique.
void buildClique(ombrix::OXModel& model, const std::string& fileName);
/// x_v: the side of vertex v.
void buildMaxcut(ombrix::OXModel& model, const std::string& fileName);
/// x_i: the variable i.
void buildQubo(ombrix::OXModel& model, const std::string& fileName);
/// x_i: item i is taken.
void buildQkp(ombrix::OXModel& model, const std::string& fileName);
/// x_v: the variable v of the file is true; counted from 1, as the file does.
void buildMaxsat(ombrix::OXModel& model, const std::string& fileName);
/// x_o_s: order o lies on slab s.
void buildSteelmill(ombrix::OXModel& model, const std::string& fileName);
/// x_r_p_g: in round r golfer p plays in group g.
void buildGolfers(ombrix::OXModel& model, const std::string& fileName);
/// x_e_d_s: employee e works shift s on day d, by their position in the file; the last s is the day
/// off.
void buildNurse(ombrix::OXModel& model, const std::string& fileName);

}  // namespace bench

#endif
