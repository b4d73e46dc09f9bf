#include "exception.h"

#include <new>

namespace ombrix::java {

namespace {

struct KindOfException {
  int kind;
  const char* className;
};

// The entry 0 ends the table and stands for every kind that is absent.
constexpr KindOfException kKinds[] = {
    {1, "java/lang/OutOfMemoryError"},     {2, "java/io/IOException"},
    {3, "java/lang/RuntimeException"},     {4, "java/lang/IndexOutOfBoundsException"},
    {5, "java/lang/ArithmeticException"},  {6, "java/lang/IllegalArgumentException"},
    {7, "java/lang/NullPointerException"}, {8, "java/lang/RuntimeException"},
    {9, "java/lang/UnknownError"},         {0, "java/lang/UnknownError"},
};

constexpr int kInternalError = 6;
constexpr const char* kFileName = "wrappers/java/exception";
constexpr int kOutOfMemoryLine = 28;
constexpr int kUnknownLine = 32;

/// The five values of an OXException, by reference: where memory has run out, an OXException itself
/// could not be made.
struct Failure {
  jint code;
  const char* fileName;
  jint lineNumber;
  const char* functionName;
  const char* explanation;
};

/// Makes the Java exception pending. It takes no memory but that of the virtual machine; when that
/// is exhausted too, the exception that the machine has made pending instead stays.
void raise(JNIEnv* env, const Failure& failure) {
  jclass exceptionClass = env->FindClass("ombrix/OXException");
  if (exceptionClass == nullptr) return;
  jmethodID constructor = env->GetMethodID(
      exceptionClass, "<init>", "(ILjava/lang/String;ILjava/lang/String;Ljava/lang/String;)V");
  if (constructor == nullptr) return;
  jstring fileName = env->NewStringUTF(failure.fileName);
  if (fileName == nullptr) return;
  jstring functionName = env->NewStringUTF(failure.functionName);
  if (functionName == nullptr) return;
  jstring explanation = env->NewStringUTF(failure.explanation);
  if (explanation == nullptr) return;
  jobject exception = env->NewObject(exceptionClass, constructor, failure.code, fileName,
                                     failure.lineNumber, functionName, explanation);
  if (exception != nullptr) env->Throw(static_cast<jthrowable>(exception));
}

}  // namespace

bool copyString(JNIEnv* env, jstring text, std::string& copy, const char* exportName) {
  const char* characters = env->GetStringUTFChars(text, nullptr);
  if (characters == nullptr) return false;
  bool copied = true;
  try {
    copy = characters;
  } catch (const std::bad_alloc&) {
    copied = false;
  }
  env->ReleaseStringUTFChars(text, characters);
  if (!copied) throwOutOfMemory(env, exportName);
  return copied;
}

void throwByKind(JNIEnv* env, int kind, const char* message) {
  const KindOfException* entry = kKinds;
  while (entry->kind != kind && entry->kind != 0) ++entry;
  env->ExceptionClear();
  jclass exceptionClass = env->FindClass(entry->className);
  if (exceptionClass != nullptr) env->ThrowNew(exceptionClass, message);
}

void throwOXException(JNIEnv* env, const OXException& failure) {
  raise(env, {failure.getCode(), failure.getFileName().c_str(), failure.getLineNumber(),
              failure.getFunctionName().c_str(), failure.getExplanation().c_str()});
}

void throwOutOfMemory(JNIEnv* env, const char* exportName) {
  raise(env, {kInternalError, kFileName, kOutOfMemoryLine, exportName, "Out of memory"});
}

void throwUnknown(JNIEnv* env, const char* exportName) {
  raise(env, {kInternalError, kFileName, kUnknownLine, exportName, "Unknown exception"});
}

}  // namespace ombrix::java
