// Texts of a picture as Java strings.
#ifndef LUMIGRAM_JNI_JAVA_TEXT_H_
#define LUMIGRAM_JNI_JAVA_TEXT_H_

#include <jni.h>

#include "jni/scoped_jni.h"
#include "lumigram.h"

namespace lumigram {

// The size of the longest field that is converted to a Java string.
inline constexpr size_t kMaxJavaTextField = sizeof(TagCollection::joinedNames);

// Returns a new local reference to a Java string of the text, whatever its bytes; null, possibly
// with an exception pending, when it cannot be created. The text has at most kMaxJavaTextField
// bytes with its terminator.
//
// A virtual machine accepts modified UTF-8 only; other bytes may cut the string or end the process.
// One-byte, two-byte and three-byte sequences, surrogates included, are passed unchanged. A
// four-byte sequence becomes a surrogate pair. Every byte that belongs to no sequence becomes
// U+FFFD.
jstring NewStringOfBoundedText(JNIEnv* env, const char* text);

// The same for a field of a record, whose size bounds the text.
template <size_t N>
jstring NewJavaString(JNIEnv* env, const char (&field)[N]) {
  static_assert(N <= kMaxJavaTextField);
  return NewStringOfBoundedText(env, field);
}

// Stores a new string into an element of the array. False when it cannot be created or stored.
template <size_t N>
bool StoreJavaString(JNIEnv* env, jobjectArray array, jsize i, const char (&field)[N]) {
  const LocalRef<jstring> string(env, NewJavaString(env, field));
  if (string.Get() == nullptr) return false;
  env->SetObjectArrayElement(array, i, string.Get());
  return !ClearException(env);
}

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_JAVA_TEXT_H_
