// What Java lends, each given back at the end of its scope, and no exception left behind.
#ifndef LUMIGRAM_JNI_SCOPED_JNI_H_
#define LUMIGRAM_JNI_SCOPED_JNI_H_

#include <jni.h>

#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram {

// Clears the exception that a call left, if any, and tells whether there was one. Hardly a JNI call
// may be made while one is pending, and failures reach Java as statuses only.
inline bool ClearException(JNIEnv* env) {
  if (!env->ExceptionCheck()) return false;
  env->ExceptionClear();
  return true;
}

// A local reference that this call obtained. An exception that came with null is cleared; the null
// then says nothing about what was asked for.
//
//   const LocalRef<jstring> path(env, env->GetObjectArrayElement(paths, i));
//   if (path.Get() == nullptr) return kBadArgument;
template <typename T>
class LocalRef {
 public:
  LocalRef(JNIEnv* env, jobject ref)
      : env_(env), ref_(static_cast<T>(ref)), failed_(ref == nullptr && ClearException(env)) {}
  ~LocalRef() { Reset(nullptr); }
  LocalRef(const LocalRef&) = delete;
  LocalRef& operator=(const LocalRef&) = delete;

  T Get() const { return ref_; }
  // Whether null came with an exception.
  bool Failed() const { return failed_; }

  // Takes another reference in place of the one that is held.
  void Reset(T ref) {
    if (ref_ != nullptr) env_->DeleteLocalRef(ref_);
    ref_ = ref;
  }
  // Gives the reference to the caller.
  T Release() {
    T ref = ref_;
    ref_ = nullptr;
    return ref;
  }

 private:
  JNIEnv* const env_;
  T ref_;
  const bool failed_;
};

// The characters of a string, in Java's modified UTF-8; null when the string is null or they cannot
// be had. Declared behind the string's reference, so that they are released before it.
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

// The elements of a byte array; null when the array is null or they cannot be had. What happens to
// changes is said beforehand.
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

// A field as a class declares it.
struct JavaField {
  const char* name;
  const char* signature;
};

// Null when the class has no such field. The error that such a look-up raises is cleared.
//
//   const jfieldID id = FindField(env, type, {"mType", "Ljava/lang/String;"});
//   if (id == nullptr) return kBadField;
inline jfieldID FindField(JNIEnv* env, jclass type, const JavaField& field) {
  const jfieldID id = env->GetFieldID(type, field.name, field.signature);
  if (id == nullptr) ClearException(env);
  return id;
}

// How many elements an array has; none when it is null, which the function itself does not survive;
// -1 when that cannot be had.
inline jsize LengthOf(JNIEnv* env, jarray array) {
  if (array == nullptr) return 0;
  const jsize length = env->GetArrayLength(array);
  return ClearException(env) ? -1 : length;
}

// A picture that is open for reading.
struct OpenPicture {
  ScopedFile stream;
  FileType type = kFileTypeUnknown;

  Status Open(const char* path) {
    FILE* opened = nullptr;
    const Status status = static_cast<Status>(OpenFile(path, 0, &opened, &type));
    stream.reset(opened);
    return status;
  }
};

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_SCOPED_JNI_H_
