#include "builder/modelreader.h"

#include <cstring>

#include "api/ombrix.h"
#include "builder/modelrecord.h"
#include "builder/operatortools.h"
#include "common/failure.h"
#include "common/messages.h"
#include "oxm/binaryreader.h"
#include "oxm/textreader.h"

namespace ombrix {

namespace {

bool startsWith(const std::string& fileName, const char* magic) {
  char header[8] = {};
  GzipIstream(fileName).read(header, 7);
  return std::strcmp(header, magic) == 0;
}

std::unique_ptr<OXMReader> createReader(const std::string& fileName) {
  if (startsWith(fileName, "<OXB01>")) return std::make_unique<BinaryReader>(fileName);
  if (startsWith(fileName, "<OXM01>")) return std::make_unique<TextReader>(fileName);
  fail(kInputOutput, OMBRIX_HERE("ModelReader::ModelReader"),
       "The given file format is not recognized");
}

}  // namespace

/// What the file tells of one expression.
struct ModelReader::ExpressionEntry {
  enum class Value { None, Integer, Double };

  bool hasOperator = false;
  OXOperator op = OXOperator::Bool;
  std::string name;
  Value kind = Value::None;
  long long intValue = 0;
  double doubleValue = 0.0;
};

ModelReader::ModelReader(Ombrix& target, const std::string& name)
    : ombrix(target), model(target.getModel()), reader(createReader(name)), fileName(name) {}

template <typename Action>
void ModelReader::forEachProperty(const Action& readValue) {
  std::string name;
  reader->nextMapStart();
  while (reader->isProperty()) {
    reader->nextProperty(name);
    readValue(name);
  }
  reader->nextMapEnd();
}

template <typename Action>
void ModelReader::forEachMap(const Action& readMap) {
  reader->nextMapStart();
  while (reader->isMapStart()) readMap();
  reader->nextMapEnd();
}

void ModelReader::read() {
  std::string name;
  reader->nextMapStart();
  if (reader->isProperty("info")) {
    reader->nextProperty(name);
    reader->skip();
  }
  const std::string firstSection = "expressions";
  reader->nextProperty(firstSection);
  readExpressions();
  while (reader->isProperty()) {
    reader->nextProperty(name);
    readSection(name);
  }
  reader->nextMapEnd();
}

void ModelReader::readSection(const std::string& name) {
  if (name == "operands") return readOperands();
  if (name == "constraints") return readConstraints();
  if (name == "objectives") return readObjectives();
  if (name == "phases") return readPhases();
  if (name == "parameters") return readParameters();
  if (name == "solution") return readSolution();
  reader->skip();
}

void ModelReader::readExpressions() {
  forEachMap([this] {
    const ExpressionEntry entry = readEntry();
    OXExpression* expression = createExpression(entry);
    if (!entry.name.empty()) expression->setName(entry.name);
    expressions.push_back(expression);
  });
}

ModelReader::ExpressionEntry ModelReader::readEntry() {
  ExpressionEntry entry;
  forEachProperty([&](const std::string& name) {
    if (name == "type") {
      entry.op = OperatorTools::stringToOperator(reader->nextString());
      entry.hasOperator = true;
    } else if (name == "name") {
      entry.name = reader->nextString();
    } else if (name == "value" && reader->isDouble()) {
      entry.doubleValue = reader->nextDouble();
      entry.kind = ExpressionEntry::Value::Double;
    } else if (name == "value") {
      entry.intValue = reader->nextLongLong();
      entry.kind = ExpressionEntry::Value::Integer;
    } else {
      reader->skip();
    }
  });
  return entry;
}

OXExpression* ModelReader::createExpression(const ExpressionEntry& entry) {
  if (!entry.hasOperator) {
    fail(kInputOutput, OMBRIX_HERE("ModelReader::readExpressions"),
         "Property 'type' is required to define an expression");
  }
  if (entry.op != OXOperator::Const) return ModelRecord::createRecord(*model, entry.op);
  switch (entry.kind) {
    case ExpressionEntry::Value::Integer:
      return model->createConstant(entry.intValue);
    case ExpressionEntry::Value::Double:
      return model->createConstant(entry.doubleValue);
    case ExpressionEntry::Value::None:
      break;
  }
  fail(kInputOutput, OMBRIX_HERE("ModelReader::readExpressions"),
       "Property 'value' is required to define a constant");
}

void ModelReader::readOperands() {
  std::int64_t position = 0;
  forEachMap([&] { readOperandsOf(*expressionAt(position++)); });
}

void ModelReader::readOperandsOf(OXExpression& expression) {
  reader->nextMapStart();
  while (reader->isInt()) {
    const OXExpression& operand = *expressionAt(reader->nextInt());
    ModelRecord::appendOperand(expression, ModelRecord::index(operand));
  }
  reader->nextMapEnd();
}

void ModelReader::readConstraints() {
  forEachMap([this] {
    OXExpression* constraint = nullptr;
    forEachProperty([&](const std::string& name) {
      if (name == "idx") {
        constraint = expressionAt(reader->nextInt());
      } else {
        reader->skip();
      }
    });
    if (constraint != nullptr) model->addConstraint(constraint);
  });
}

void ModelReader::readObjectives() {
  forEachMap([this] {
    OXExpression* objective = nullptr;
    OXObjectiveDirection direction = OXObjectiveDirection::Minimize;
    forEachProperty([&](const std::string& name) {
      if (name == "idx") {
        objective = expressionAt(reader->nextInt());
      } else if (name == "dir") {
        direction = reader->nextString() == "maximize" ? OXObjectiveDirection::Maximize
                                                       : OXObjectiveDirection::Minimize;
      } else {
        reader->skip();
      }
    });
    if (objective != nullptr) model->addObjective(objective, direction);
  });
}

void ModelReader::readPhases() {
  closeModel();
  forEachMap([this] { readPhase(); });
}

void ModelReader::readPhase() {
  OXPhase& phase = *ombrix.createPhase();
  forEachProperty([&](const std::string& name) {
    if (name == "iterationLimit") {
      phase.setIterationLimit(reader->nextLongLong());
    } else if (name == "timeLimit") {
      phase.setTimeLimit(reader->nextInt());
    } else if (name == "optimizedObjective") {
      phase.setOptimizedObjective(reader->nextInt());
    } else {
      reader->skip();
    }
  });
}

void ModelReader::readParameters() {
  closeModel();
  forEachProperty([this](const std::string& name) { readParameter(name); });
}

void ModelReader::readParameter(const std::string& name) {
  OXParam& param = *ombrix.getParam();
  if (name == "seed") return param.setSeed(reader->nextInt());
  if (name == "nbThreads") return param.setNbThreads(reader->nextInt());
  if (name == "annealingLevel") return param.setAnnealingLevel(reader->nextInt());
  if (name == "verbosity") return param.setVerbosity(reader->nextInt());
  if (name == "timeBetweenDisplays") return param.setTimeBetweenDisplays(reader->nextInt());
  if (name == "objectiveBounds") return readObjectiveBounds();
  if (name == "advancedParams") return readAdvancedParams();
  reader->skip();
}

void ModelReader::readObjectiveBounds() {
  OXParam& param = *ombrix.getParam();
  int position = 0;
  reader->nextMapStart();
  for (;;) {
    if (reader->isDouble()) {
      param.setDoubleObjectiveBound(position++, reader->nextDouble());
    } else if (reader->isLongLong()) {
      param.setIntObjectiveBound(position++, reader->nextLongLong());
    } else {
      break;
    }
  }
  reader->nextMapEnd();
}

void ModelReader::readAdvancedParams() {
  forEachProperty([this](const std::string& key) {
    ombrix.getParam()->setAdvancedParam(key, reader->nextInt());
  });
}

void ModelReader::readSolution() {
  closeModel();
  forEachProperty([this](const std::string& name) {
    if (name == "decisions") {
      readDecisions();
    } else {
      reader->skip();
    }
  });
}

/// The saved decisions become the starting point of the next search.
void ModelReader::readDecisions() {
  int position = 0;
  reader->nextMapStart();
  for (;;) {
    if (reader->isLongLong()) {
      model->getDecision(position++)->setIntValue(reader->nextLongLong());
    } else if (reader->isDouble()) {
      model->getDecision(position++)->setDoubleValue(reader->nextDouble());
    } else {
      break;
    }
  }
  reader->nextMapEnd();
}

void ModelReader::closeModel() {
  if (!model->isClosed()) model->close();
}

OXExpression* ModelReader::expressionAt(std::int64_t index) const {
  const auto count = static_cast<std::int64_t>(expressions.size());
  if (index < 0 || index >= count) {
    fail(kInputOutput, OMBRIX_HERE("ModelReader::read"),
         messages::badIndex("Expression", index, count - 1));
  }
  return expressions[static_cast<std::size_t>(index)];
}

}  // namespace ombrix
