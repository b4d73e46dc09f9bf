#include "builder/modelwriter.h"

#include <string_view>

#include "api/ombrix.h"
#include "builder/modelrecord.h"
#include "builder/operatortools.h"
#include "builder/solverrecord.h"
#include "common/failure.h"
#include "oxm/binarywriter.h"
#include "oxm/textwriter.h"

namespace ombrix {

namespace {

// A parameter of the run that wrote the file, not of the search it describes.
constexpr std::string_view kDumpKey = "dumpEnabled";

std::unique_ptr<OXMWriter> createWriter(const std::string& fileName) {
  const std::string_view name(fileName);
  const bool compress = name.ends_with(".gz");
  const bool binary = name.ends_with(".oxb.gz") || name.ends_with(".oxb");
  if (binary) return std::make_unique<BinaryWriter>(fileName, compress);
  return std::make_unique<TextWriter>(fileName, compress);
}

}  // namespace

ModelWriter::ModelWriter(const Ombrix& source, const std::string& fileName)
    : ombrix(source), model(source.getModel()), writer(createWriter(fileName)) {}

std::uint64_t ModelWriter::write() {
  writer->pushMap();
  writeInfo();
  writeExpressions();
  writeOperands();
  writeConstraints();
  writeObjectives();
  if (ModelRecord::closed(*model)) {
    writePhases();
    writeParameters();
    writeSolution();
  }
  writer->popMap();
  const std::uint64_t nbBytes = writer->getNbBytes();
  writer.reset();
  return nbBytes;
}

void ModelWriter::writeInfo() {
  writer->pushProperty("info");
  writer->pushMap();
  writer->pushProperty("version", OXVersion::getVersion());
  writer->popMap();
}

void ModelWriter::writeExpressions() {
  writer->pushProperty("expressions");
  writer->pushMap();
  for (const OXExpression* expression : ModelRecord::expressions(*model)) {
    writeExpression(*expression);
  }
  writer->popMap();
}

void ModelWriter::writeExpression(const OXExpression& expression) {
  writer->pushMap();
  writer->pushProperty("type", OperatorTools::getName(ModelRecord::op(expression)));
  if (expression.isNamed()) writer->pushProperty("name", expression.getName());
  if (ModelRecord::op(expression) == OXOperator::Const) {
    const OXValue value = ModelRecord::constant(expression);
    if (ModelRecord::valueType(expression) == kDoubleType) {
      writer->pushProperty("value", value.doubleValue);
    } else {
      writer->pushProperty("value", static_cast<long long>(value.intValue));
    }
  }
  writer->popMap();
}

void ModelWriter::writeOperands() {
  writer->pushProperty("operands");
  writer->pushMap();
  for (const OXExpression* expression : ModelRecord::expressions(*model)) {
    writer->pushMap();
    const std::int32_t* indices = ModelRecord::operandIndices(*expression);
    for (std::int32_t i = 0; i < ModelRecord::nbOperands(*expression); ++i) {
      writer->pushValue(static_cast<int>(indices[i]));
    }
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writeConstraints() {
  writer->pushProperty("constraints");
  writer->pushMap();
  for (const OXExpression* constraint : ModelRecord::constraints(*model)) {
    writer->pushMap();
    writer->pushProperty("idx", static_cast<int>(ModelRecord::index(*constraint)));
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writeObjectives() {
  const auto& objectives = ModelRecord::objectives(*model);
  const auto& directions = ModelRecord::objectiveDirections(*model);
  writer->pushProperty("objectives");
  writer->pushMap();
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    writer->pushMap();
    writer->pushProperty("idx", static_cast<int>(ModelRecord::index(*objectives[i])));
    writer->pushProperty("dir", directions[i] == 1 ? "maximize" : "minimize");
    writer->popMap();
  }
  writer->popMap();
}

void ModelWriter::writePhases() {
  writer->pushProperty("phases");
  writer->pushMap();
  for (int i = 0; i < ombrix.getNbPhases(); ++i) writePhase(*ombrix.getPhase(i));
  writer->popMap();
}

void ModelWriter::writePhase(const OXPhase& phase) {
  writer->pushMap();
  writer->pushProperty("iterationLimit", phase.getIterationLimit());
  writer->pushProperty("timeLimit", phase.getTimeLimit());
  writer->pushProperty("optimizedObjective", phase.getOptimizedObjective());
  writer->popMap();
}

void ModelWriter::writeParameters() {
  const OXParam& param = *ombrix.getParam();
  writer->pushProperty("parameters");
  writer->pushMap();
  writer->pushProperty("seed", param.getSeed());
  writer->pushProperty("nbThreads", param.getNbThreads());
  writer->pushProperty("annealingLevel", param.getAnnealingLevel());
  writer->pushProperty("verbosity", param.getVerbosity());
  writer->pushProperty("timeBetweenDisplays", param.getTimeBetweenDisplays());
  writeObjectiveBounds();
  writeAdvancedParams();
  writer->popMap();
}

void ModelWriter::writeObjectiveBounds() {
  const OXParam& param = *ombrix.getParam();
  writer->pushProperty("objectiveBounds");
  writer->pushMap();
  int i = 0;
  for (const OXExpression* objective : ModelRecord::objectives(*model)) {
    if (ModelRecord::valueType(*objective) == kDoubleType) {
      writer->pushValue(param.getDoubleObjectiveBound(i));
    } else {
      writer->pushValue(param.getIntObjectiveBound(i));
    }
    ++i;
  }
  writer->popMap();
}

void ModelWriter::writeAdvancedParams() {
  writer->pushProperty("advancedParams");
  writer->pushMap();
  for (const auto& [key, value] : SolverRecord::advancedParams(*ombrix.getParam())) {
    if (key != kDumpKey) writer->pushProperty(key, static_cast<int>(value));
  }
  writer->popMap();
}

void ModelWriter::writeSolution() {
  writer->pushProperty("solution");
  writer->pushMap();
  writer->pushProperty("status", statusWord(ombrix.getSolution()->getStatus()));
  writeDecisions();
  writer->popMap();
}

const char* ModelWriter::statusWord(OXSolutionStatus status) {
  switch (status) {
    case OXSolutionStatus::Inconsistent:
      return "inconsistent";
    case OXSolutionStatus::Infeasible:
      return "infeasible";
    case OXSolutionStatus::Feasible:
      return "feasible";
    case OXSolutionStatus::Optimal:
      return "optimal";
  }
  fail(kInputOutput, OMBRIX_HERE("ModelWriter::writeSolution"), "Solution status not supported");
}

void ModelWriter::writeDecisions() {
  OXSolution& solution = *ombrix.getSolution();
  writer->pushProperty("decisions");
  writer->pushMap();
  for (OXExpression* decision : ModelRecord::decisions(*model)) {
    if (ModelRecord::valueType(*decision) == kDoubleType) {
      writer->pushValue(solution.getDoubleValue(decision));
    } else {
      writer->pushValue(solution.getIntValue(decision));
    }
  }
  writer->popMap();
}

}  // namespace ombrix
