// Texts of a picture as Java strings.
#ifndef LUMIGRAM_JNI_JAVA_TEXT_H_
#define LUMIGRAM_JNI_JAVA_TEXT_H_

#include <jni.h>

#include "jni/scoped_jni.h"
#include "lumigram.h"

namespace lumigram {

// The longest field whose text goes to Java.
inline constexpr size_t kMaxJavaTextField = sizeof(TagCollection::joinedNames);

// A new local reference to a string of the text, whatever bytes a picture holds; null, maybe with
// an exception pending, when it cannot be made. The text has at most kMaxJavaTextField bytes with
// its terminator.
//
// A virtual machine takes modified UTF-8 only, and may cut the string or end the process over
// anything else. Two-byte and three-byte sequences go as they are, surrogates among them. A
// character outside the basic plane becomes its surrogate pair. Every byte that belongs to no such
// sequence becomes U+FFFD.
jstring NewStringOfBoundedText(JNIEnv* env, const char* text);

// The same for a field of a record: its size is the bound.
template <size_t N>
jstring NewJavaString(JNIEnv* env, const char (&field)[N]) {
  static_assert(N <= kMaxJavaTextField);
  return NewStringOfBoundedText(env, field);
}

// Stores a new string into an element that the array has; false when the machine refuses.
template <size_t N>
bool StoreJavaString(JNIEnv* env, jobjectArray array, jsize i, const char (&field)[N]) {
  const LocalRef<jstring> string(env, NewJavaString(env, field));
  if (string.Get() == nullptr) return false;
  env->SetObjectArrayElement(array, i, string.Get());
  return !ClearException(env);
}

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_JAVA_TEXT_H_
