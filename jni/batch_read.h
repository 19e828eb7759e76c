// Reads a batch of pictures into attribute objects, whatever holds the pictures.
#ifndef LUMIGRAM_JNI_BATCH_READ_H_
#define LUMIGRAM_JNI_BATCH_READ_H_

#include <string.h>

#include <algorithm>

#include "jni/attribute_object.h"

namespace lumigram {

// The working storage of a call, which is too large for the stack of a Java thread.
struct BatchStorage {
  char document[kLumigramDocumentBufferBytes];
  DeliveredDocument delivered;
};

struct TakenPicture {
  Status status = kBadArgument;
  bool isOpened = false;  // the size is known, and the other facts as far as the reader came
  PictureFacts facts = {};

  ReaderOutputs OutputsTo(char* document, Fingerprint* fingerprint) {
    return {document, &facts.height, &facts.width, &facts.pop, fingerprint};
  }
};

// Stores the picture that was taken into the storage and the object.
inline Status StorePicture(const TakenPicture& picture, AttributeObject& object,
                           BatchStorage* storage, AttributeObject::TagRule rule) {
  if (picture.isOpened) {
    if (Status s = object.SetSize(picture.facts); s != kOk) return s;
    // A reader may store dimensions even if it refuses the picture.
    if (Status s = object.SetDimensions(picture.facts); s != kOk) return s;
  }
  if (picture.status != kOk) return picture.status == kNoDocument ? kOk : picture.status;
  TakeDocumentApart(storage->document, &storage->delivered);
  return object.SetDocument(storage->delivered, rule);
}

// Reads `count` pictures, or fewer if there are fewer objects or results. take(i, document) reads
// picture i; the document's buffer is all zero. Returns kOk when the results are stored, whatever
// they are.
template <typename Take>
Status ReadBatch(JNIEnv* env, jsize count, jobjectArray attrs, jbyteArray results,
                 AttributeObject::TagRule rule, Take take) {
  count = std::min({count, LengthOf(env, attrs), LengthOf(env, results)});
  if (count < 0) return kBadField;
  const ScopedBlock<BatchStorage> storage(static_cast<BatchStorage*>(malloc(sizeof(BatchStorage))));
  if (storage == nullptr) return kNoRoom;
  JavaBytes codes(env, results, JavaBytes::kCopyBack);
  if (codes.Get() == nullptr) return kBadField;
  AttributeObject object(env);
  const auto read = [&](jsize i) -> Status {
    const LocalRef<jobject> attr(env, env->GetObjectArrayElement(attrs, i));
    if (attr.Get() == nullptr) return kBadArgument;
    if (Status s = object.Select(attr.Get()); s != kOk) return s;
    memset(storage->document, 0, sizeof storage->document);
    return StorePicture(take(i, storage->document), object, storage.get(), rule);
  };
  for (jsize i = 0; i < count; ++i) codes.Get()[i] = static_cast<jbyte>(read(i));
  return kOk;
}

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_BATCH_READ_H_
