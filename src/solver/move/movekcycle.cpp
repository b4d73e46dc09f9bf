#include "solver/move/movekcycle.h"

#include "solver/kernel/random.h"

namespace ombrix {

MoveKCycle::MoveKCycle(Dag& workerDag, std::uint32_t& state, std::uint32_t length,
                       std::uint32_t moveWeight, std::uint32_t rate, BasicMoveStructure& lists)
    : MoveChain(formatMoveName(length, "Cycle"), workerDag, state, length, moveWeight, rate,
                lists) {}

bool MoveKCycle::apply() {
  forgetChain();
  ChainLink start;
  if (!cycleStart(start)) return false;
  ChainLink end;
  const std::uint64_t nbRising = node(start.list).nbNotMaxNodes(*dag, start.list);
  const bool isRarer = nbRising * 2 <= dag->fixedFields->nbOperands(start.list);
  if (start.side == isRarer) {
    extendChain(start, k - 1, end);
    return close({start.list, !start.side}, end);
  }
  // Closing in the start list would have to find one of its rare operands. A second arm leaves the
  // start through one of them instead, and the arms meet elsewhere.
  ChainLink closing;
  extendChain(start, k - 2, end);
  extendChain({start.list, !start.side}, 1, closing);
  return close(closing, end);
}

bool MoveKCycle::cycleStart(ChainLink& link) {
  return analysis().hasFreeOrMixed ? constrainedStart(link) : anyStart(link);
}

bool MoveKCycle::constrainedStart(ChainLink& link) {
  const std::vector<std::uint32_t>& lists = analysis().booleanLists;
  const std::uint32_t nbFreeLists = analysis().nbFreeLists;
  if (lists.size() == nbFreeLists) return false;
  std::uint32_t target = kNone;
  if (drawTarget(target)) {
    const DecisionIncidence own = analysis().incidence(target);
    if (own.nbConstrained > own.nbFree) {
      startAt(target, own.nbFree + randomIndex(*rng, own.nbConstrained - own.nbFree), link);
      return true;
    }
  }
  const auto nbOthers = static_cast<std::uint32_t>(lists.size()) - nbFreeLists;
  link.list = lists[nbFreeLists + randomIndex(*rng, nbOthers)];
  link.side = randomBool(*rng);
  return true;
}

bool MoveKCycle::close(const ChainLink& closing, const ChainLink& end) {
  if (closing.list == kNone || end.list == kNone) return false;
  const std::uint32_t decision = closingDecision(closing.list, end.list, closing.side, end.side);
  return decision != kNone && flipDecision(decision);
}

}  // namespace ombrix
