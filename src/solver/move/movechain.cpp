#include "solver/move/movechain.h"

#include <algorithm>
#include <utility>

#include "common/failure.h"
#include "solver/kernel/random.h"
#include "solver/move/targeting.h"

namespace ombrix {

namespace {

/// The first index from begin on whose entry is at least value: doubling strides, then a binary
/// search within the last one.
std::uint32_t gallop(const std::uint32_t* entries, std::uint32_t begin, std::uint32_t end,
                     std::uint32_t value) {
  std::uint32_t low = begin;
  std::uint32_t stride = 1;
  while (stride < end - low && entries[low + stride] < value) {
    low += stride;
    stride *= 2;
  }
  const std::uint32_t high = low + std::min(stride, end - low);
  return static_cast<std::uint32_t>(std::lower_bound(entries + low, entries + high, value) -
                                    entries);
}

}  // namespace

MoveChain::MoveChain(std::string moveName, Dag& workerDag, std::uint32_t& state,
                     std::uint32_t length, std::uint32_t moveWeight, std::uint32_t rate,
                     BasicMoveStructure& lists)
    : Move(std::move(moveName), workerDag, state, moveWeight),
      k(length),
      targetingRate(rate),
      structure(&lists) {
  if (k < 2) {
    fail(kInternal, OMBRIX_HERE("MoveChain::MoveChain"), "Invalid k-chain. k must be >= 2");
  }
}

void MoveChain::forgetChain() {
  firstPosition = -1;
  nbFlips = 0;
}

// ---- where a chain begins

void MoveChain::randomStart(ChainLink& link) {
  const std::vector<std::uint32_t>& lists = analysis().booleanLists;
  link.list = lists[randomIndex(*rng, static_cast<std::uint32_t>(lists.size()))];
  link.side =
      node(link.list).nbNotMaxNodes(*dag, link.list) <= dag->fixedFields->nbOperands(link.list) / 2;
}

bool MoveChain::targetedStart(std::uint32_t decision, ChainLink& link) {
  const DecisionIncidence own = analysis().incidence(decision);
  if (own.nbConstrained == 0) return false;
  const std::uint32_t begin = own.nbConstrained - own.nbFree >= 2 ? own.nbFree : 0;
  startAt(decision, begin + randomIndex(*rng, own.nbConstrained - begin), link);
  return true;
}

bool MoveChain::pathStart(ChainLink& link) {
  const std::uint32_t nbFreeLists = analysis().nbFreeLists;
  if (nbFreeLists == 0) return false;
  std::uint32_t target = kNone;
  if (drawTarget(target) && analysis().nbFree(target) > 0) {
    startAt(target, randomIndex(*rng, analysis().nbFree(target)), link);
  } else {
    link.list = analysis().booleanLists[randomIndex(*rng, nbFreeLists)];
    link.side = randomBool(*rng);
  }
  return true;
}

bool MoveChain::anyStart(ChainLink& link) {
  if (analysis().booleanLists.empty()) return false;
  std::uint32_t target = kNone;
  if (!drawTarget(target) || !targetedStart(target, link)) randomStart(link);
  return true;
}

bool MoveChain::drawTarget(std::uint32_t& decision) {
  return randomPercent(*rng, targetingRate) && pickTargetedBoolean(*dag, *rng, decision);
}

void MoveChain::startAt(std::uint32_t decision, std::uint32_t entry, ChainLink& link) {
  const DecisionIncidence own = analysis().incidence(decision);
  const std::uint32_t position = own.positions[entry];
  link.list = own.lists[entry];
  link.side = node(link.list).isNotMaxNode(*dag, link.list, position);
  firstPosition = static_cast<std::int32_t>(position);
}

// ---- how it goes on

int MoveChain::randomOtherEntry(std::uint32_t& state, std::span<const std::uint32_t> lists,
                                std::uint32_t begin, std::uint32_t end, std::uint32_t exclude) {
  if (begin == end) return -1;
  const std::uint32_t count = end - begin;
  const std::uint32_t first = randomIndex(state, count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t entry = begin + (first + i) % count;
    if (lists[entry] != exclude) return static_cast<int>(entry);
  }
  return -1;
}

bool MoveChain::nextLink(ChainLink& link, std::uint32_t position) {
  const DecisionIncidence own =
      analysis().incidence(dag->fixedFields->operand(link.list, position));
  int entry = randomOtherEntry(*rng, own.lists, own.nbFree, own.nbConstrained, link.list);
  if (entry < 0) entry = randomOtherEntry(*rng, own.lists, 0, own.nbFree, link.list);
  if (entry < 0) return false;
  const auto found = static_cast<std::size_t>(entry);
  link.list = own.lists[found];
  link.side = node(link.list).isNotMinNode(*dag, link.list, own.positions[found]);
  return true;
}

bool MoveChain::extendChain(const ChainLink& start, std::uint32_t steps, ChainLink& out) {
  out = start;
  for (std::uint32_t i = 0; i < steps; ++i) {
    const bool isFirst = nbFlips == 0 && firstPosition != -1;
    const std::uint32_t position =
        isFirst ? static_cast<std::uint32_t>(firstPosition) : randomOperand(out.list, out.side);
    if (position == kNone || !flipOperand(out.list, position) || !nextLink(out, position)) {
      out.list = kNone;
      return false;
    }
  }
  return true;
}

std::uint32_t MoveChain::randomOperand(std::uint32_t list, bool side) {
  return side ? node(list).randomNotMaxNode(*dag, list, *rng)
              : node(list).randomNotMinNode(*dag, list, *rng);
}

bool MoveChain::flipOperand(std::uint32_t list, std::uint32_t position) {
  return flipDecision(dag->fixedFields->operand(list, position));
}

bool MoveChain::flipDecision(std::uint32_t decision) {
  if (dag->propagation.isTouched(decision)) return false;
  flip(decision);
  ++nbFlips;
  return true;
}

// ---- how it closes

std::uint32_t MoveChain::closingDecision(std::uint32_t listA, std::uint32_t listB, bool sideA,
                                         bool sideB) {
  const DagFixedFields& fields = *dag->fixedFields;
  if (listA == listB && sideA != sideB) return kNone;
  if (listA != listB) {
    if (hasSingleOperand(listA, sideA)) return singleOperandIfCommon(listA, sideA, listB, sideB);
    if (hasSingleOperand(listB, sideB)) return singleOperandIfCommon(listB, sideB, listA, sideA);
  }
  const std::uint32_t position = randomOperand(listA, sideA);
  if (position == kNone) return kNone;
  if (listA == listB) return fields.operand(listA, position);
  const std::uint32_t found =
      firstCommon(listA, position, fields.nbOperands(listA), listB, sideA, sideB);
  return found != kNone ? found : firstCommon(listA, 0, position, listB, sideA, sideB);
}

bool MoveChain::hasSingleOperand(std::uint32_t list, bool side) const {
  return (side ? node(list).nbNotMaxNodes(*dag, list) : node(list).nbNotMinNodes(*dag, list)) == 1;
}

/// The only operand of a list that fits its side, if it lies in the other list and fits there.
std::uint32_t MoveChain::singleOperandIfCommon(std::uint32_t list, bool side, std::uint32_t other,
                                               bool otherSide) const {
  const DagFixedFields& fields = *dag->fixedFields;
  const std::uint32_t position =
      side ? node(list).notMaxNodeAt(*dag, list, 0) : node(list).notMinNodeAt(*dag, list, 0);
  const std::uint32_t decision = fields.operand(list, position);
  const std::uint32_t* begin = fields.operandsOf(other);
  const std::uint32_t* end = begin + fields.nbOperands(other);
  const std::uint32_t* place = std::lower_bound(begin, end, decision);
  if (place == end || *place != decision) return kNone;
  return fits(other, static_cast<std::uint32_t>(place - begin), otherSide) ? decision : kNone;
}

/// The first operand of list A at the positions from begin below end that also lies in list B, with
/// the right state in both.
std::uint32_t MoveChain::firstCommon(std::uint32_t listA, std::uint32_t begin, std::uint32_t end,
                                     std::uint32_t listB, bool sideA, bool sideB) const {
  const std::uint32_t* inA = dag->fixedFields->operandsOf(listA);
  const std::uint32_t* inB = dag->fixedFields->operandsOf(listB);
  const std::uint32_t endB = dag->fixedFields->nbOperands(listB);
  std::uint32_t a = begin;
  std::uint32_t b = 0;
  while (a < end && b < endB) {
    if (inA[a] < inB[b]) {
      a = gallop(inA, a, end, inB[b]);
    } else if (inB[b] < inA[a]) {
      b = gallop(inB, b, endB, inA[a]);
    } else {
      if (fits(listA, a, sideA) && fits(listB, b, sideB)) return inA[a];
      ++a;
      ++b;
    }
  }
  return kNone;
}

}  // namespace ombrix
