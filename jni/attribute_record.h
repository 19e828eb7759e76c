// Takes the values of a Java attribute object for writing.
#ifndef LUMIGRAM_JNI_ATTRIBUTE_RECORD_H_
#define LUMIGRAM_JNI_ATTRIBUTE_RECORD_H_

#include <jni.h>

#include "core/base/scoped.h"
#include "core/base/status.h"

namespace lumigram {

// Makes a record of the object's fields. Returns kOk; kNoRoom; kBadField for an object that lacks a
// field, or has a value that cannot be used; kDuplicateBlob for two blobs with one name.
Status TakeRecord(JNIEnv* env, jobject object, ScopedBlock<AttrInfo>* record);

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_ATTRIBUTE_RECORD_H_
