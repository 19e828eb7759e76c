// Empties the unused slots of the arrays that a batch read fills.
#ifndef LUMIGRAM_JNI_EMPTY_SLOTS_H_
#define LUMIGRAM_JNI_EMPTY_SLOTS_H_

#include <jni.h>

#include "jni/scoped_jni.h"
#include "lumigram.h"

namespace lumigram {

// Stores the empty string into the unused slots of an array. One bulk copy from an array of empty
// strings takes as long as a few stores; if it fails, each slot is stored separately.
class EmptySlots {
 public:
  explicit EmptySlots(JNIEnv* env) : env_(env) {}

  // The array has at least `end` elements.
  bool Fill(jobjectArray array, jsize begin, jsize end) {
    if (begin == end) return true;
    if (!Prepare()) return false;
    return Copy(array, begin, end) || StoreEach(array, begin, end);
  }

 private:
  // Prepares the copy once for all pictures of a call. False only without the empty string: without
  // the rest, slots are stored separately.
  bool Prepare() {
    if (empty_.Get() != nullptr) return true;
    empty_ = {env_, env_->NewStringUTF("")};
    if (empty_.Get() == nullptr) return false;
    const LocalRef<jclass> stringClass(env_, env_->FindClass("java/lang/String"));
    system_ = {env_, env_->FindClass("java/lang/System")};
    if (stringClass.Get() == nullptr || system_.Get() == nullptr) return true;
    arraycopy_ = env_->GetStaticMethodID(system_.Get(), "arraycopy",
                                         "(Ljava/lang/Object;ILjava/lang/Object;II)V");
    if (ClearException(env_) || arraycopy_ == nullptr) return true;
    source_ = {env_, env_->NewObjectArray(kLumigramMaxTags, stringClass.Get(), empty_.Get())};
    return true;
  }

  bool Copy(jobjectArray array, jsize begin, jsize end) {
    if (source_.Get() == nullptr) return false;
    jvalue arguments[5];
    arguments[0].l = source_.Get();
    arguments[1].i = 0;
    arguments[2].l = array;
    arguments[3].i = begin;
    arguments[4].i = end - begin;
    env_->CallStaticVoidMethodA(system_.Get(), arraycopy_, arguments);
    return !ClearException(env_);
  }

  bool StoreEach(jobjectArray array, jsize begin, jsize end) {
    for (jsize i = begin; i < end; ++i) {
      env_->SetObjectArrayElement(array, i, empty_.Get());
      if (ClearException(env_)) return false;
    }
    return true;
  }

  JNIEnv* const env_;
  LocalRef<jstring> empty_;
  LocalRef<jclass> system_;
  LocalRef<jobjectArray> source_;
  jmethodID arraycopy_ = nullptr;
};

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_EMPTY_SLOTS_H_
