#include "solver/kernel/movepool.h"

#include <iomanip>
#include <ostream>
#include <string>
#include <utility>

#include "common/failure.h"

namespace ombrix {

void MovePool::addMove(std::unique_ptr<Move> move) {
  moves.push_back(std::move(move));
  weightedMoves.clear();
}

Move* MovePool::getMove(std::uint32_t index) const {
  if (index >= moves.size()) {
    fail(kInternal, OMBRIX_HERE("MovePool::getMove"),
         "The asked move (idx " + std::to_string(index) + ") is not in the pool");
  }
  return moves[index].get();
}

void MovePool::rebuild() {
  weightedMoves.clear();
  for (const auto& move : moves) {
    weightedMoves.insert(weightedMoves.end(), move->weight, move.get());
  }
}

void MovePool::printStatistics(std::ostream& out) const {
  out << std::left << std::setw(20) << "Heur. stats" << std::right << std::setw(10) << "moves"
      << std::setw(10) << "accepted" << std::setw(10) << "improved" << std::setw(10) << "infeas"
      << std::setw(8) << "rate" << std::endl;
  for (const auto& move : moves) {
    out << "  " << std::left << std::setw(18) << move->name << std::right << std::setw(10)
        << move->nbAttempted << std::setw(10) << move->nbAccepted << std::setw(10)
        << move->nbImprovements << std::setw(10) << move->nbInfeasibles << std::setw(8)
        << move->weight << std::endl;
  }
}

}  // namespace ombrix
