#include "oxm/oxmwriter.h"

namespace ombrix {

void OXMWriter::pushProperty(const std::string& name, const char* value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, bool value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, double value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, long long value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, long value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, int value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, char value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushProperty(const std::string& name, const std::string& value) {
  pushProperty(name);
  pushValue(value);
}

void OXMWriter::pushValue(long value) {
  pushValue(static_cast<long long>(value));
}

void OXMWriter::pushValue(int value) {
  pushValue(static_cast<long long>(value));
}

void OXMWriter::pushValue(const char* value) {
  pushValue(std::string(value));
}

void OXMWriter::pushTrue() {
  pushValue(true);
}

void OXMWriter::pushFalse() {
  pushValue(false);
}

}  // namespace ombrix
