#ifndef OMBRIX_COMMON_MESSAGES_H
#define OMBRIX_COMMON_MESSAGES_H

#include <string>

/// The recurring message patterns, in one place so that the system speaks with one voice and no two
/// failures of a kind are worded differently.
namespace ombrix::messages {

/// "Argument NAME cannot be null."
std::string nullArgument(const std::string& name);
/// "Argument NAME does not belong to this instance of Ombrix."
std::string foreignArgument(const std::string& name);
/// "Argument NAME cannot be an empty string."
std::string emptyString(const std::string& name);
/// "NOUN with index I does not exist." and, on a second line, the indices allowed.
std::string badIndex(const std::string& noun, long long index, long long lastIndex);
/// "NAME must be an integer between A and B."
std::string outOfRange(const std::string& name, long long low, long long high);
/// "Argument NAME must be positive."
std::string notPositive(const std::string& name);
/// "Argument NAME must be strictly positive."
std::string notStrictlyPositive(const std::string& name);
/// "Number of NOUN cannot exceed N."
std::string capacityExceeded(const std::string& noun, long long limit);
/// "Cannot use this method. The given expression must be boolean or integer."
std::string mustBeIntegral();
/// "Cannot use this method. The given expression must be double."
std::string mustBeDouble();
/// "Cannot use NaN (Not a Number) as a double constant."
std::string notANumber();
/// "Number of operands (N) is too large: at most M operands are expected for EXPR."
std::string tooManyOperands(long long given, long long allowed, const std::string& expr);
/// "Number of operands (N) is too small: at least M operands are expected for EXPR."
std::string tooFewOperands(long long given, long long required, const std::string& expr);
/// "Operand P of EXPR must be TYPES", without a final point.
std::string wrongOperand(long long position, const std::string& expr, const std::string& types);
/// "expression with type 'NAME'": an expression of which only the operator is told.
std::string expressionWithType(const std::string& operatorName);

}  // namespace ombrix::messages

#endif
