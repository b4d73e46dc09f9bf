#ifndef OMBRIX_OXM_OXMWRITER_H
#define OMBRIX_OXM_OXMWRITER_H

#include <cstdint>
#include <string>

namespace ombrix {

/// Writes a stream of tokens: maps, which also serve as lists, properties and scalar values. An
/// item of a map is a property name followed by a value, or a bare value. What a map means is up to
/// the schema.
class OXMWriter {
public:
  virtual ~OXMWriter() = default;

  virtual void pushMap() = 0;
  virtual void popMap() = 0;

  // A property with its value.
  virtual void pushProperty(const std::string& name, const char* value);
  virtual void pushProperty(const std::string& name, bool value);
  virtual void pushProperty(const std::string& name, double value);
  virtual void pushProperty(const std::string& name, long long value);
  virtual void pushProperty(const std::string& name, long value);
  virtual void pushProperty(const std::string& name, int value);
  virtual void pushProperty(const std::string& name, char value);
  virtual void pushProperty(const std::string& name, const std::string& value);
  /// A property name alone; the value follows.
  virtual void pushProperty(const std::string& name) = 0;

  virtual void pushValue(bool value) = 0;
  virtual void pushValue(double value) = 0;
  virtual void pushValue(long long value) = 0;
  virtual void pushValue(long value);
  virtual void pushValue(int value);
  virtual void pushValue(char value) = 0;
  virtual void pushValue(const char* value);
  virtual void pushValue(const std::string& value) = 0;
  virtual void pushTrue();
  virtual void pushFalse();
  virtual void pushNil() = 0;

  /// The bytes that the file must hold, before any compression: who wants to know whether all of
  /// them arrived reads the file back and compares.
  virtual std::uint64_t getNbBytes() const = 0;
};

}  // namespace ombrix

#endif
