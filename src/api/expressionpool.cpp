#include "api/expressionpool.h"

#include <algorithm>

namespace ombrix {

void ExpressionPool::addChunk() {
  const std::size_t capacity =
      chunks.empty() ? kFirstChunk : std::min(2 * nbInChunk, kLargestChunk);
  // new[] aligns for every fundamental type; the chunk is left uninitialised for the records.
  chunks.emplace_back(new std::byte[capacity * elementSize]);
  nbInChunk = capacity;
  nbUsed = 0;
}

}  // namespace ombrix
