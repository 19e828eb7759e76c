// Owners of JNI resources, which are released at the end of their scope. No exception stays
// pending.
#ifndef LUMIGRAM_JNI_SCOPED_JNI_H_
#define LUMIGRAM_JNI_SCOPED_JNI_H_

#include <jni.h>

#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram {

// Clears a pending exception. Returns whether there was one. Few JNI calls are allowed while an
// exception is pending, and we report failures to Java as statuses only.
inline bool ClearException(JNIEnv* env) {
  if (!env->ExceptionCheck()) return false;
  env->ExceptionClear();
  return true;
}

// A local reference that this call obtained. If an exception came with null, it is cleared, and
// Failed() distinguishes this null from one that is the value.
//
//   const LocalRef<jstring> path(env, env->GetObjectArrayElement(paths, i));
//   if (path.Get() == nullptr) return kBadArgument;
template <typename T>
class LocalRef {
 public:
  LocalRef() = default;
  LocalRef(JNIEnv* env, jobject ref)
      : env_(env), ref_(static_cast<T>(ref)), failed_(ref == nullptr && ClearException(env)) {}
  ~LocalRef() { Delete(); }
  LocalRef(LocalRef&& other) noexcept
      : env_(other.env_), ref_(other.Release()), failed_(other.failed_) {}
  LocalRef& operator=(LocalRef&& other) noexcept {
    Delete();
    env_ = other.env_;
    ref_ = other.Release();
    failed_ = other.failed_;
    return *this;
  }

  T Get() const { return ref_; }
  // Whether null came with an exception.
  bool Failed() const { return failed_; }

  // Gives the reference to the caller.
  T Release() {
    T ref = ref_;
    ref_ = nullptr;
    return ref;
  }

 private:
  void Delete() {
    if (ref_ != nullptr) env_->DeleteLocalRef(ref_);
  }

  JNIEnv* env_ = nullptr;
  T ref_ = nullptr;
  bool failed_ = false;
};

// The characters of a string, in Java's modified UTF-8; null when the string is null or they cannot
// be read. Declare it after the string's reference, so that the characters are released first.
//
//   const JavaText text(env, path.Get());
//   if (text.Get() == nullptr) return kBadField;
class JavaText {
 public:
  JavaText(JNIEnv* env, jstring string)
      : env_(env),
        string_(string),
        chars_(string == nullptr ? nullptr : env->GetStringUTFChars(string, nullptr)) {
    if (chars_ == nullptr) ClearException(env);
  }
  ~JavaText() {
    if (chars_ != nullptr) env_->ReleaseStringUTFChars(string_, chars_);
  }
  JavaText(const JavaText&) = delete;
  JavaText& operator=(const JavaText&) = delete;

  const char* Get() const { return chars_; }

 private:
  JNIEnv* const env_;
  const jstring string_;
  const char* const chars_;
};

// The elements of a byte array; null when the array is null or they cannot be read. AtEnd says
// whether changes are copied back.
//
//   JavaBytes codes(env, results, JavaBytes::kCopyBack);
//   if (codes.Get() == nullptr) return kBadField;
class JavaBytes {
 public:
  enum AtEnd : jint { kCopyBack = 0, kDiscard = JNI_ABORT };

  JavaBytes(JNIEnv* env, jbyteArray array, AtEnd atEnd)
      : env_(env),
        array_(array),
        atEnd_(atEnd),
        bytes_(array == nullptr ? nullptr : env->GetByteArrayElements(array, nullptr)) {
    if (bytes_ == nullptr) ClearException(env);
  }
  ~JavaBytes() {
    if (bytes_ != nullptr) env_->ReleaseByteArrayElements(array_, bytes_, atEnd_);
  }
  JavaBytes(const JavaBytes&) = delete;
  JavaBytes& operator=(const JavaBytes&) = delete;

  jbyte* Get() const { return bytes_; }

 private:
  JNIEnv* const env_;
  const jbyteArray array_;
  const AtEnd atEnd_;
  jbyte* const bytes_;
};

// The name and the JNI signature of a field.
struct JavaField {
  const char* name;
  const char* signature;
};

// Looks up a field. Null when the class has no such field; the exception is cleared.
//
//   const jfieldID id = FindField(env, type, {"mType", "Ljava/lang/String;"});
//   if (id == nullptr) return kBadField;
inline jfieldID FindField(JNIEnv* env, jclass type, const JavaField& field) {
  const jfieldID id = env->GetFieldID(type, field.name, field.signature);
  if (id == nullptr) ClearException(env);
  return id;
}

// The length of an array; 0 for null, which GetArrayLength() does not accept; -1 when it cannot be
// read.
inline jsize LengthOf(JNIEnv* env, jarray array) {
  if (array == nullptr) return 0;
  const jsize length = env->GetArrayLength(array);
  return ClearException(env) ? -1 : length;
}

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_SCOPED_JNI_H_
