#ifndef OMBRIX_OXM_BINARYTAGS_H
#define OMBRIX_OXM_BINARYTAGS_H

#include <cstddef>

namespace ombrix {

/// The tags of the binary encoding. Those without a variant are the token kinds themselves.
enum BinaryTag : int {
  kStringDefinitionTag = 1,  ///< adds a text to the cache; no token
  kMapStartTag = 16,
  kMapEndTag = 17,
  kInlinePropertyTag = 18,
  kCachedPropertyTag = 19,
  kInt8Tag = 160,
  kInt16Tag = 161,
  kInt32Tag = 162,
  kInt64Tag = 163,
  kDoubleTag = 176,
  kNilTag = 192,
  kFalseTag = 193,
  kTrueTag = 194,
  kInlineStringTag = 208,
  kCachedStringTag = 209
};

inline constexpr const char* kBinaryMagic = "<OXB01>";
/// The longest string, in bytes, that enters the cache.
inline constexpr std::size_t kMaxCachedLength = 25;
/// The most entries that the cache takes.
inline constexpr std::size_t kMaxCacheSize = 65534;

}  // namespace ombrix

#endif
