#ifndef OMBRIX_SOLVER_KERNEL_NODEPOOL_H
#define OMBRIX_SOLVER_KERNEL_NODEPOOL_H

#include <cstddef>
#include <vector>

#include "solver/kernel/cacheline.h"

namespace ombrix {

/// A pool of objects of one size: blocks of 128 elements, doubling up to 8192, each consumed from
/// its end towards its start. Elements are never released one by one: all go with the pool.
class NodePool {
public:
  explicit NodePool(std::size_t size) : elementSize(size) {}

  void* allocate();

private:
  void addBlock();

  std::vector<CacheLineArray<std::byte>> blocks;
  std::size_t elementSize;
  std::size_t freeInLastBlock = 0;
  std::size_t lastBlockElements = 0;
};

}  // namespace ombrix

#endif
