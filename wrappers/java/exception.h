#ifndef OMBRIX_WRAPPERS_JAVA_EXCEPTION_H
#define OMBRIX_WRAPPERS_JAVA_EXCEPTION_H

#include <jni.h>

#include <string>

#include "ombrix/oxexception.h"

/// What every exported function shares: strings that come in, and failures that go out. A native
/// exception never leaves an export; it becomes a pending Java exception that the virtual machine
/// raises when the native frame ends.
namespace ombrix::java {

/// The kinds of Java exception that the bridge raises without a native failure.
enum ExceptionKind : int { kNullPointerException = 7 };

/// Copies a Java string as modified UTF-8. False when its characters cannot be had: an exception is
/// pending then, the virtual machine's own or one for the named export.
bool copyString(JNIEnv* env, jstring text, std::string& copy, const char* exportName);

/// Raises the Java exception class of a kind; an unknown kind is a java/lang/UnknownError.
void throwByKind(JNIEnv* env, int kind, const char* message);

/// Raises ombrix.OXException with the five values of the native one.
void throwOXException(JNIEnv* env, const OXException& failure);

/// An exhausted allocation in the named export, as an OXException of code 6.
void throwOutOfMemory(JNIEnv* env, const char* exportName);

/// Anything else thrown in the named export, as an OXException of code 6.
void throwUnknown(JNIEnv* env, const char* exportName);

}  // namespace ombrix::java

#endif
