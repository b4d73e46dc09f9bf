#ifndef OMBRIX_BUILDER_MODELREADER_H
#define OMBRIX_BUILDER_MODELREADER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "oxm/oxmreader.h"

namespace ombrix {

class Ombrix;
class OXExpression;
class OXModel;

/// Reads an environment into an Ombrix object whose model is empty. The expressions come first; the
/// other sections may follow in any order, and the first one that needs a closed model closes it. A
/// failure leaves what was read so far.
class ModelReader {
public:
  /// Chooses the encoding by the content of the file; code 1 if it is neither.
  ModelReader(Ombrix& target, const std::string& name);

  void read();

private:
  struct ExpressionEntry;

  /// Walks the map that comes next. For each property the action takes the value behind the name.
  template <typename Action>
  void forEachProperty(const Action& readValue);
  /// Walks the map of maps that comes next. The action takes one of them.
  template <typename Action>
  void forEachMap(const Action& readMap);

  void readSection(const std::string& name);
  void readExpressions();
  ExpressionEntry readEntry();
  OXExpression* createExpression(const ExpressionEntry& entry);
  void readOperands();
  void readOperandsOf(OXExpression& expression);
  void readConstraints();
  void readObjectives();
  void readPhases();
  void readPhase();
  void readParameters();
  void readParameter(const std::string& name);
  void readObjectiveBounds();
  void readAdvancedParams();
  void readSolution();
  void readDecisions();
  void closeModel();
  /// The expression at an index of the file; code 1 if the file has no such expression.
  OXExpression* expressionAt(std::int64_t index) const;

  Ombrix& ombrix;
  OXModel* model;
  std::unique_ptr<OXMReader> reader;
  std::string fileName;
  std::vector<OXExpression*> expressions;  ///< in the order of the file
};

}  // namespace ombrix

#endif
