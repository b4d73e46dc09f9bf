#include "exception.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

namespace {

/// While set, no memory is to be had.
bool isExhausted = false;

}  // namespace

void* operator new(std::size_t size) {
  void* block = isExhausted ? nullptr : std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

namespace ombrix::java {
namespace {

/// What the failures do in a virtual machine, noted without taking memory.
struct Machine {
  int nbStringsLeft = 100;
  jint code = -1;
  jint lineNumber = -1;
  const char* fileName = nullptr;
  const char* functionName = nullptr;
  const char* explanation = nullptr;
  int nbThrown = 0;
  int nbReleased = 0;
};

Machine machine;

jclass findClass(JNIEnv*, const char* name) {
  return std::string_view(name) == "ombrix/OXException" ? reinterpret_cast<jclass>(&machine)
                                                        : nullptr;
}

jmethodID getMethodID(JNIEnv*, jclass, const char*, const char*) {
  return reinterpret_cast<jmethodID>(&machine);
}

/// The characters themselves stand for the string.
jstring newStringUTF(JNIEnv*, const char* characters) {
  if (machine.nbStringsLeft-- == 0) return nullptr;
  return reinterpret_cast<jstring>(const_cast<char*>(characters));
}

jobject newObjectV(JNIEnv*, jclass, jmethodID, va_list arguments) {
  machine.code = va_arg(arguments, jint);
  machine.fileName = reinterpret_cast<const char*>(va_arg(arguments, jstring));
  machine.lineNumber = va_arg(arguments, jint);
  machine.functionName = reinterpret_cast<const char*>(va_arg(arguments, jstring));
  machine.explanation = reinterpret_cast<const char*>(va_arg(arguments, jstring));
  return reinterpret_cast<jobject>(&machine);
}

jint throwObject(JNIEnv*, jthrowable) {
  ++machine.nbThrown;
  return 0;
}

const char* getCharacters(JNIEnv*, jstring text, jboolean*) {
  return reinterpret_cast<const char*>(text);
}

void releaseCharacters(JNIEnv*, jstring, const char*) {
  ++machine.nbReleased;
}

class ExhaustedMemory : public testing::Test {
protected:
  ExhaustedMemory() {
    machine = Machine();
    functions.FindClass = findClass;
    functions.GetMethodID = getMethodID;
    functions.NewStringUTF = newStringUTF;
    functions.NewObjectV = newObjectV;
    functions.Throw = throwObject;
    functions.GetStringUTFChars = getCharacters;
    functions.ReleaseStringUTFChars = releaseCharacters;
    env.functions = &functions;
  }
  ~ExhaustedMemory() override { isExhausted = false; }

  void expectOutOfMemory(const std::string& exportName) const {
    EXPECT_EQ(machine.nbThrown, 1);
    EXPECT_EQ(machine.code, 6);
    EXPECT_EQ(machine.functionName, exportName);
    EXPECT_STREQ(machine.explanation, "Out of memory");
  }

  JNINativeInterface_ functions{};
  JNIEnv env{};
};

constexpr const char* kExport = "Java_ombrix_ombrixnativejavaJNI_OXModel_1addConstraint";

TEST_F(ExhaustedMemory, IsToldWithoutTakingMemory) {
  isExhausted = true;
  EXPECT_NO_THROW(throwOutOfMemory(&env, kExport));
  isExhausted = false;
  expectOutOfMemory(kExport);
}

TEST_F(ExhaustedMemory, AnUnknownExceptionIsToldWithoutTakingMemory) {
  isExhausted = true;
  EXPECT_NO_THROW(throwUnknown(&env, kExport));
  isExhausted = false;
  EXPECT_EQ(machine.nbThrown, 1);
  EXPECT_STREQ(machine.explanation, "Unknown exception");
}

TEST_F(ExhaustedMemory, AFailureOfTheLibraryIsToldWithoutTakingMemory) {
  const OXException failure(2, "src/api/oxmodel.cpp", 17, "ombrix::OXModel::close", "Cycle");
  isExhausted = true;
  EXPECT_NO_THROW(throwOXException(&env, failure));
  isExhausted = false;
  EXPECT_EQ(machine.nbThrown, 1);
  EXPECT_EQ(machine.code, 2);
  EXPECT_STREQ(machine.fileName, "src/api/oxmodel.cpp");
  EXPECT_EQ(machine.lineNumber, 17);
  EXPECT_STREQ(machine.functionName, "ombrix::OXModel::close");
  EXPECT_STREQ(machine.explanation, "Cycle");
}

TEST_F(ExhaustedMemory, AStringThatCannotBeCopiedIsReleased) {
  const std::string longText(1000, 'x');
  const jstring text = reinterpret_cast<jstring>(const_cast<char*>(longText.c_str()));
  std::string copy;
  isExhausted = true;
  const bool isCopied = copyString(&env, text, copy, kExport);
  isExhausted = false;
  EXPECT_FALSE(isCopied);
  EXPECT_EQ(machine.nbReleased, 1);
  expectOutOfMemory(kExport);
}

TEST_F(ExhaustedMemory, WhenTheMachineHasNoneEitherItsOwnExceptionStays) {
  for (int nbStrings = 0; nbStrings < 3; ++nbStrings) {
    machine.nbStringsLeft = nbStrings;
    throwOutOfMemory(&env, kExport);
    EXPECT_EQ(machine.nbThrown, 0);
    EXPECT_EQ(machine.explanation, nullptr) << "a pending exception allows no further object";
  }
}

}  // namespace
}  // namespace ombrix::java
