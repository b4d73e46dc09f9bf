#include "solver/kernel/nodepool.h"

#include <algorithm>

namespace ombrix {

namespace {
constexpr std::size_t kFirstBlockElements = 128;
constexpr std::size_t kMaxBlockElements = 8192;
}  // namespace

void* NodePool::allocate() {
  if (freeInLastBlock == 0) addBlock();
  --freeInLastBlock;
  return blocks.back().get() + freeInLastBlock * elementSize;
}

void NodePool::addBlock() {
  const std::size_t nbElements = lastBlockElements == 0
                                     ? kFirstBlockElements
                                     : std::min(2 * lastBlockElements, kMaxBlockElements);
  // Not value-initialised: the objects write themselves.
  blocks.push_back(makeCacheLineArray<std::byte>(nbElements * elementSize));
  lastBlockElements = nbElements;
  freeInLastBlock = nbElements;
}

}  // namespace ombrix
