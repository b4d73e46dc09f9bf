#ifndef OMBRIX_API_EXPRESSIONPOOL_H
#define OMBRIX_API_EXPRESSIONPOOL_H

#include <cstddef>
#include <memory>
#include <vector>

namespace ombrix {

/// The memory of the expression records of one model. Records are handed out one behind the other
/// from chunks that double in size up to a cap, and are released only all at once with the pool: so
/// a record never moves, costs no header, and an allocation is an increment.
class ExpressionPool {
public:
  static constexpr std::size_t kFirstChunk = 128;
  static constexpr std::size_t kLargestChunk = 8192;

  explicit ExpressionPool(std::size_t recordSize) : elementSize(recordSize) {}

  /// Raw memory for one record, aligned for any of its fields.
  void* allocate() {
    if (nbUsed == nbInChunk) addChunk();
    return chunks.back().get() + elementSize * nbUsed++;
  }

  std::size_t getNbChunks() const { return chunks.size(); }
  /// The number of records that the newest chunk holds when it is full; 0 before the first one.
  std::size_t getChunkCapacity() const { return nbInChunk; }

private:
  void addChunk();

  std::size_t elementSize;
  std::size_t nbInChunk = 0;
  std::size_t nbUsed = 0;
  std::vector<std::unique_ptr<std::byte[]>> chunks;
};

}  // namespace ombrix

#endif
