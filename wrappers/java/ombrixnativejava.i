// The one description of the Java bridge: from it come the exported functions and the proxy classes.
// Declarations are repeated here rather than read from the public headers because their order fixes
// the numbers of the overloads, which are part of the binary interface.
%module ombrixnativejava

%include "enums.swg"
%javaconst(1);

%{
#include "exception.h"
#include "ombrix/ombrix.h"
%}

%pragma(java) jniclassclassmodifiers="/** The native functions, one for each public operation. Use the proxy classes instead. */
final class"
%pragma(java) jniclasscode=%{
  static {
    NativeLibrary.load();
  }

  private ombrixnativejavaJNI() {}
%}
%pragma(java) moduleclassmodifiers="final class"

// ---------------------------------------------------------------------------------------- failures

%exception {
  try {
    $action
  } catch (const ombrix::OXException& failure) {
    ombrix::java::throwOXException(jenv, failure);
    return $null;
  } catch (const std::bad_alloc&) {
    ombrix::java::throwOutOfMemory(jenv, "$wrapname");
    return $null;
  } catch (...) {
    ombrix::java::throwUnknown(jenv, "$wrapname");
    return $null;
  }
}

// ----------------------------------------------------------------------------------------- strings

namespace std {
class string;
}

%typemap(jni) std::string, const std::string& "jstring"
%typemap(jtype) std::string, const std::string& "String"
%typemap(jstype) std::string, const std::string& "String"
%typemap(javain) std::string, const std::string& "$javainput"

%typemap(in) const std::string& (std::string copy) %{
  if (!$input) {
    ombrix::java::throwByKind(jenv, ombrix::java::kNullPointerException, "null std::string");
    return $null;
  }
  if (!ombrix::java::copyString(jenv, $input, copy, __func__)) return $null;
  $1 = &copy;
%}
%typemap(javaout) std::string {
    return $jnicall;
  }
%typemap(out) std::string %{ $result = jenv->NewStringUTF($1.c_str()); %}
%typemap(typecheck) const std::string& = char*;

// ---------------------------------------------------------------------------------------- OXVersion

%nodefaultctor;
%nodefaultdtor;

%typemap(javaclassmodifiers) ombrix::OXVersion "/** What build this is. */\npublic class"

namespace ombrix {
class OXVersion {
 public:
  ~OXVersion();
  static int getMajorVersionNumber();
  static int getMinorVersionNumber();
  static int getBuildDate();
  static int getVersionCode();
  static std::string getPlatform();
  static std::string getVersion();
  static std::string getCopyright();
  static std::string getInfo();
};
}  // namespace ombrix

// -------------------------------------------------------------------------------------- OXException

// The Java exception holds its five values itself and never a native object.
%typemap(javaclassmodifiers) ombrix::OXException "/**
 * A failure of the solver, told by a code and an explanation. Codes: 0 misuse of the interface, 1 input
 * and output, 2 an invalid model, 5 a computation that has no value, 6 an internal error.
 */
public class"
%typemap(javabase) ombrix::OXException "RuntimeException"
%typemap(javafinalize) ombrix::OXException ""
%typemap(javadestruct, methodname="delete", methodmodifiers="private", parameters="") ombrix::OXException ""
%typemap(javabody) ombrix::OXException %{
  private static final long serialVersionUID = 1L;

  private final int code;
  private final String fileName;
  private final int lineNumber;
  private final String functionName;

  public OXException(int code, String fileName, int lineNumber, String functionName, String explanation) {
    super(explanation);
    this.code = code;
    this.fileName = fileName;
    this.lineNumber = lineNumber;
    this.functionName = functionName;
  }

  /** The class of the failure. */
  public int getCode() {
    return code;
  }

  /** The source file of the native code in which the failure was raised. */
  public String getFileName() {
    return fileName;
  }

  public int getLineNumber() {
    return lineNumber;
  }

  /** The qualified name of the native operation that failed. */
  public String getFunctionName() {
    return functionName;
  }

  /** The message for the user; the same as getMessage. */
  public String getExplanation() {
    return getMessage();
  }
%}

namespace ombrix {
class OXException {
 public:
  ~OXException();
};
}  // namespace ombrix

// ------------------------------------------------------------------------------------- enumerations

namespace ombrix {
enum class OXOperator {
  Bool = 0, Const = 1, Sum = 2, Prod = 3, Max = 4, Min = 5, Eq = 6, Neq = 7, Geq = 8, Leq = 9,
  Gt = 10, Lt = 11, Iif = 12, Not = 13, And = 14, Or = 15, Xor = 16, Abs = 17, Dist = 18, Div = 19,
  Mod = 20, Array = 21, At = 22, Scalar = 23, Ceil = 24, Floor = 25, Round = 26, Sqrt = 27,
  Log = 28, Exp = 29, Pow = 30, Cos = 31, Sin = 32, Tan = 33
};
enum class OXState { Modeling = 0, Running = 1, Paused = 2, Stopped = 3 };
enum class OXSolutionStatus { Inconsistent = 0, Infeasible = 1, Feasible = 2, Optimal = 3 };
enum class OXObjectiveDirection { Minimize = 0, Maximize = 1 };
}  // namespace ombrix

// ------------------------------------------------------------------------------------------ proxies

// From here on every operation is one of a live solver: a call after delete() is refused in Java and
// never reaches the freed object.
%typemap(javaout) int, long long, double, bool, std::string {
    requireAlive();
    return $jnicall;
  }
%typemap(javaout) void {
    requireAlive();
    $jnicall;
  }
%typemap(javaout) enum SWIGTYPE {
    requireAlive();
    return $javaclassname.swigToEnum($jnicall);
  }
%typemap(javaout) SWIGTYPE* {
    requireAlive();
    long address = $jnicall;
    return (address == 0) ? null : new $javaclassname(address, owner());
  }
%typemap(javaout) ombrix::Ombrix* {
    requireAlive();
    $jnicall;
    return owner();
  }

%define OMBRIX_PROXY(CLASS, DESCRIPTION)
%typemap(javaclassmodifiers) ombrix::CLASS "/** " DESCRIPTION " Valid as long as its {@link Ombrix}, which it keeps reachable. */
public final class"
%typemap(javafinalize) ombrix::CLASS ""
%typemap(javadestruct, methodname="delete", methodmodifiers="private", parameters="") ombrix::CLASS ""
%typemap(javabody) ombrix::CLASS %{
  private final long swigCPtr;
  private final Ombrix owner;

  CLASS(long address, Ombrix owner) {
    this.swigCPtr = address;
    this.owner = owner;
  }

  static long getCPtr(CLASS object) {
    if (object == null) {
      return 0;
    }
    object.requireAlive();
    return object.swigCPtr;
  }

  private void requireAlive() {
    owner.requireAlive();
  }

  private Ombrix owner() {
    return owner;
  }

  /** Two proxies are equal when they stand for the same native object. */
  @Override
  public boolean equals(Object other) {
    return other instanceof CLASS && ((CLASS) other).swigCPtr == swigCPtr;
  }

  @Override
  public int hashCode() {
    return Long.hashCode(swigCPtr);
  }
%}
%enddef

OMBRIX_PROXY(OXModel, "A model: expressions over boolean decisions, constraints and objectives.")
OMBRIX_PROXY(OXExpression, "One expression of a model.")
OMBRIX_PROXY(OXParam, "The settings of a search.")
OMBRIX_PROXY(OXPhase, "One phase of a search: limits, and the objective to optimise.")
OMBRIX_PROXY(OXSolution, "One assignment of the decisions, and every value that follows from it.")
OMBRIX_PROXY(OXStatistics, "The counters of a search or of one of its phases.")

%typemap(javaclassmodifiers) ombrix::Ombrix "/**
 * A solver, and the owner of everything reached from it. Create one, build its model, close it, solve,
 * read the solution; {@link #delete} (or a try-with-resources block) frees the native memory at once,
 * and any later use of the solver or of an object reached from it gives an IllegalStateException.
 */
public final class"
%typemap(javainterfaces) ombrix::Ombrix "AutoCloseable"
%typemap(javaimports) ombrix::Ombrix %{
import java.lang.ref.Cleaner;
%}
%typemap(javafinalize) ombrix::Ombrix ""
%typemap(javabody) ombrix::Ombrix %{
  private static final Cleaner CLEANER = Cleaner.create();

  /** Frees the native solver once, whether by delete or because the proxy became unreachable. */
  private static final class Handle implements Runnable {
    private final long address;

    Handle(long address) {
      this.address = address;
    }

    @Override
    public void run() {
      ombrixnativejavaJNI.delete_Ombrix(address);
    }
  }

  private volatile long swigCPtr;
  private final Cleaner.Cleanable handle;
  private final Object lock = new Object();
  private int nbSolving;

  Ombrix(long address, boolean owned) {
    swigCPtr = address;
    handle = CLEANER.register(this, new Handle(address));
  }

  /**
   * A new solver that holds the environment of a file: the model, closed, with its phases and
   * parameters, and the saved decisions as the starting point of the next search. When the load
   * fails the new solver is deleted, and the OXException tells what is wrong with the file.
   */
  public static Ombrix fromEnvironment(String fileName) {
    Ombrix loaded = new Ombrix();
    try {
      loaded.loadEnvironment(fileName);
    } catch (RuntimeException | Error failure) {
      loaded.delete();
      throw failure;
    }
    return loaded;
  }

  static long getCPtr(Ombrix object) {
    if (object == null) {
      return 0;
    }
    object.requireAlive();
    return object.swigCPtr;
  }

  void requireAlive() {
    if (swigCPtr == 0) {
      throw new IllegalStateException("This Ombrix object has been deleted.");
    }
  }

  private Ombrix owner() {
    return this;
  }

  private void enterSolve() {
    synchronized (lock) {
      requireAlive();
      ++nbSolving;
    }
  }

  private void leaveSolve() {
    synchronized (lock) {
      --nbSolving;
      lock.notifyAll();
    }
  }

  /** The same as {@link #delete}. */
  @Override
  public void close() {
    delete();
  }
%}
%typemap(javadestruct, methodname="delete", methodmodifiers="public") ombrix::Ombrix {
    boolean interrupted = false;
    synchronized (lock) {
      while (swigCPtr != 0 && nbSolving > 0) {
        ombrixnativejavaJNI.Ombrix_stop(swigCPtr, this);
        try {
          lock.wait(10);
        } catch (InterruptedException e) {
          interrupted = true;
        }
      }
      if (swigCPtr != 0) {
        swigCPtr = 0;
        handle.clean();
      }
    }
    if (interrupted) {
      Thread.currentThread().interrupt();
    }
  }
%typemap(javaout) void ombrix::Ombrix::solve {
    enterSolve();
    try {
      $jnicall;
    } finally {
      leaveSolve();
    }
  }
// The two calls meant for other threads may come while the solver is deleted: under the lock they reach
// a live one or are refused.
%typemap(javaout) void ombrix::Ombrix::stop {
    synchronized (lock) {
      requireAlive();
      $jnicall;
    }
  }
%typemap(javaout) ombrix::OXState ombrix::Ombrix::getState {
    synchronized (lock) {
      requireAlive();
      return $javaclassname.swigToEnum($jnicall);
    }
  }

%javamethodmodifiers ombrix::Ombrix::saveEnvironment "/**
   * Writes model, phases, parameters and solution to a file: binary if its name ends with .oxb or
   * .oxb.gz, text otherwise, compressed if it ends with .gz. Prefer binary, which keeps everything.
   */
  public"
%javamethodmodifiers ombrix::Ombrix::loadEnvironment "/**
   * Reads what {@link #saveEnvironment} wrote into this solver, whose model must be empty, and closes
   * the model. A load that fails leaves what was read so far, and this solver can only be deleted
   * then: {@link #fromEnvironment} loads into a new one and does so.
   */
  public"

namespace ombrix {

class OXExpression;
class OXModel;
class OXParam;
class OXPhase;
class OXSolution;
class OXStatistics;

class Ombrix {
 public:
  Ombrix();
  ~Ombrix();
  OXState getState() const;
  OXModel* getModel() const;
  OXParam* getParam() const;
  void solve();
  void stop();
  OXPhase* createPhase();
  OXPhase* getPhase(int index) const;
  int getNbPhases() const;
  OXSolution* getSolution() const;
  OXStatistics* getStatistics() const;
  std::string toString() const;
  std::string getInfo() const;
  void saveEnvironment(const std::string& fileName);
  void loadEnvironment(const std::string& fileName);
};

class OXModel {
 public:
  Ombrix* getOmbrix() const;
  OXExpression* createConstant(long long value);
  OXExpression* createConstant(double value);
  OXExpression* createExpression(OXOperator op);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1);
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1,
                                 OXExpression* expr2);
  int getNbExpressions() const;
  OXExpression* getExpression(int index) const;
  OXExpression* getExpression(const std::string& name) const;
  int getNbDecisions() const;
  OXExpression* getDecision(int index) const;
  void addConstraint(OXExpression* expr);
  int getNbConstraints() const;
  OXExpression* getConstraint(int index) const;
  void addObjective(OXExpression* expr, OXObjectiveDirection direction);
  int getNbObjectives() const;
  OXExpression* getObjective(int index) const;
  OXObjectiveDirection getObjectiveDirection(int index) const;
  int getNbOperands() const;
  void close();
  void open();
  bool isClosed() const;
  std::string toString() const;
};

}  // namespace ombrix

// The overloads with constants are no methods of OXModel: each constant becomes an expression, created
// from the last to the first, which fixes their indices when they are new.
%define OMBRIX_CREATE_WITH_CONSTANTS(CONSTANT)
  OXExpression* createExpression(OXOperator op, CONSTANT expr0) {
    return $self->createExpression(op, $self->createConstant(expr0));
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, CONSTANT expr1) {
    ombrix::OXExpression* second = $self->createConstant(expr1);
    ombrix::OXExpression* first = $self->createConstant(expr0);
    return $self->createExpression(op, first, second);
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, OXExpression* expr1) {
    return $self->createExpression(op, $self->createConstant(expr0), expr1);
  }
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, CONSTANT expr1) {
    return $self->createExpression(op, expr0, $self->createConstant(expr1));
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, CONSTANT expr1, CONSTANT expr2) {
    ombrix::OXExpression* third = $self->createConstant(expr2);
    ombrix::OXExpression* second = $self->createConstant(expr1);
    ombrix::OXExpression* first = $self->createConstant(expr0);
    return $self->createExpression(op, first, second, third);
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, CONSTANT expr1, OXExpression* expr2) {
    ombrix::OXExpression* second = $self->createConstant(expr1);
    ombrix::OXExpression* first = $self->createConstant(expr0);
    return $self->createExpression(op, first, second, expr2);
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, OXExpression* expr1, CONSTANT expr2) {
    ombrix::OXExpression* third = $self->createConstant(expr2);
    ombrix::OXExpression* first = $self->createConstant(expr0);
    return $self->createExpression(op, first, expr1, third);
  }
  OXExpression* createExpression(OXOperator op, CONSTANT expr0, OXExpression* expr1, OXExpression* expr2) {
    return $self->createExpression(op, $self->createConstant(expr0), expr1, expr2);
  }
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, CONSTANT expr1, CONSTANT expr2) {
    ombrix::OXExpression* third = $self->createConstant(expr2);
    ombrix::OXExpression* second = $self->createConstant(expr1);
    return $self->createExpression(op, expr0, second, third);
  }
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, CONSTANT expr1, OXExpression* expr2) {
    return $self->createExpression(op, expr0, $self->createConstant(expr1), expr2);
  }
  OXExpression* createExpression(OXOperator op, OXExpression* expr0, OXExpression* expr1, CONSTANT expr2) {
    return $self->createExpression(op, expr0, expr1, $self->createConstant(expr2));
  }
%enddef

%extend ombrix::OXModel {
  OMBRIX_CREATE_WITH_CONSTANTS(long long)
  OMBRIX_CREATE_WITH_CONSTANTS(double)
}

namespace ombrix {

class OXExpression {
 public:
  Ombrix* getOmbrix() const;
  OXModel* getModel() const;
  OXOperator getOperator() const;
  int getIndex() const;
  bool isConstant() const;
  bool isDecision() const;
  bool isConstraint() const;
  bool isObjective() const;
  bool isDouble() const;
  bool isInt() const;
  bool isBool() const;
  bool isArray() const;
  void addOperand(OXExpression* expr);
  void addOperand(long long constant);
  void addOperand(double constant);
  void setOperand(int position, OXExpression* expr);
  void setOperand(int position, long long constant);
  void setOperand(int position, double constant);
  OXExpression* getOperand(int position) const;
  int getNbOperands() const;
  void setValue(long long value);
  void setValue(double value);
  void setIntValue(long long value);
  void setDoubleValue(double value);
  long long getValue() const;
  long long getIntValue() const;
  double getDoubleValue() const;
  void setName(const std::string& name);
  bool isNamed() const;
  std::string getName() const;
  std::string toString() const;
  std::string getInfo() const;
};

class OXParam {
 public:
  Ombrix* getOmbrix() const;
  void setSeed(int seed);
  int getSeed() const;
  void setNbThreads(int nbThreads);
  int getNbThreads() const;
  void setAnnealingLevel(int annealingLevel);
  int getAnnealingLevel() const;
  void setVerbosity(int verbosity);
  int getVerbosity() const;
  void setTimeBetweenDisplays(int timeBetweenDisplays);
  int getTimeBetweenDisplays() const;
  void setObjectiveBound(int objective, long long bound);
  void setObjectiveBound(int objective, double bound);
  void setIntObjectiveBound(int objective, long long bound);
  void setDoubleObjectiveBound(int objective, double bound);
  long long getObjectiveBound(int objective) const;
  long long getIntObjectiveBound(int objective) const;
  double getDoubleObjectiveBound(int objective) const;
  void setAdvancedParam(const std::string& key, int value);
  int getAdvancedParam(const std::string& key) const;
  int getAdvancedParam(const std::string& key, int defaultValue) const;
  std::string toString() const;
};

class OXPhase {
 public:
  Ombrix* getOmbrix() const;
  void setTimeLimit(int timeLimit);
  int getTimeLimit() const;
  void setIterationLimit(long long iterationLimit);
  long long getIterationLimit() const;
  void setOptimizedObjective(int optimizedObjective);
  int getOptimizedObjective() const;
  OXStatistics* getStatistics() const;
  std::string toString() const;
};

class OXSolution {
 public:
  Ombrix* getOmbrix() const;
  void setValue(OXExpression* expr, long long value);
  void setValue(OXExpression* expr, double value);
  void setIntValue(OXExpression* expr, long long value);
  void setDoubleValue(OXExpression* expr, double value);
  long long getValue(OXExpression* expr);
  long long getIntValue(OXExpression* expr);
  double getDoubleValue(OXExpression* expr);
  OXSolutionStatus getStatus();
  void clear();
};

class OXStatistics {
 public:
  Ombrix* getOmbrix() const;
  int getRunningTime() const;
  long long getNbIterations() const;
  long long getNbMoves() const;
  long long getNbAcceptedMoves() const;
  long long getNbImprovingMoves() const;
  long long getNbInfeasibleMoves() const;
  long long getNbRejectedMoves() const;
  double getPercentAcceptedMoves() const;
  double getPercentImprovingMoves() const;
  double getPercentRejectedMoves() const;
  double getPercentInfeasibleMoves() const;
  std::string toString() const;
  std::string getInfo() const;
};

}  // namespace ombrix
