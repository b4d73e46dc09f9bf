#ifndef OMBRIX_BENCH_SPARSEMODELS_H
#define OMBRIX_BENCH_SPARSEMODELS_H

#include <ombrix/ombrix.h>

#include <cstdint>
#include <string>
#include <vector>

/// Random sparse models of any size whose decisions have a constant degree, so that a move reaches
/// the same number of nodes whatever the size: what grows with the size is then the engine's own
/// cost.
namespace ombrix::bench {

/// Every row is covered by 10 columns, every column covers 5 rows on average; minimise the cost.
void buildSetCovering(OXModel& model, int nbDecisions, std::uint32_t seed);

/// Three edges a vertex on average; maximise the cut, each edge told by a product of its ends.
void buildMaxCut(OXModel& model, int nbDecisions, std::uint32_t seed);

/// Knapsack rows of 20 items, every item in two rows on average; maximise the profit.
void buildKnapsackRows(OXModel& model, int nbDecisions, std::uint32_t seed);

struct Family {
  std::string name;
  void (*build)(OXModel& model, int nbDecisions, std::uint32_t seed);
};

const std::vector<Family>& families();

}  // namespace ombrix::bench

#endif
