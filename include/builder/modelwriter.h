#ifndef OMBRIX_BUILDER_MODELWRITER_H
#define OMBRIX_BUILDER_MODELWRITER_H

#include <cstdint>
#include <memory>
#include <string>

#include "api/oxsolutionstatus.h"
#include "oxm/oxmwriter.h"

namespace ombrix {

class Ombrix;
class OXExpression;
class OXModel;
class OXPhase;

/// Writes an environment (model, phases, parameters, solution) as a stream of tokens, and knows
/// nothing of the encoding. A failure on the way passes through and leaves the file as far as it
/// was written.
class ModelWriter {
public:
  /// Chooses the encoding by the end of the name: ".oxb" and ".oxb.gz" are binary, all else is
  /// text;
  /// ".gz" is compressed.
  ModelWriter(const Ombrix& source, const std::string& fileName);

  /// Writes everything and closes the file. Returns the bytes that it must hold, before any
  /// compression.
  std::uint64_t write();

  /// The word for a status in a file; code 1 if there is none.
  static const char* statusWord(OXSolutionStatus status);

private:
  void writeInfo();
  void writeExpressions();
  void writeExpression(const OXExpression& expression);
  void writeOperands();
  void writeConstraints();
  void writeObjectives();
  void writePhases();
  void writePhase(const OXPhase& phase);
  void writeParameters();
  void writeObjectiveBounds();
  void writeAdvancedParams();
  void writeSolution();
  void writeDecisions();

  const Ombrix& ombrix;
  const OXModel* model;
  std::unique_ptr<OXMWriter> writer;
};

}  // namespace ombrix

#endif
