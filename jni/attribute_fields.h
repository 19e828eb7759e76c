// The fields that the attribute objects for reading and writing share. Their tag names differ:
// mTags is one string in the object for reading, and an array in the object for writing.
#ifndef LUMIGRAM_JNI_ATTRIBUTE_FIELDS_H_
#define LUMIGRAM_JNI_ATTRIBUTE_FIELDS_H_

#include "jni/scoped_jni.h"

namespace lumigram {

inline constexpr JavaField kNameField = {"mName", "[Ljava/lang/String;"};
inline constexpr JavaField kNoteField = {"mNote", "[Ljava/lang/String;"};
inline constexpr JavaField kPartField = {"mPart", "[B"};
inline constexpr JavaField kCategoryField = {"mCategory", "Ljava/lang/String;"};
inline constexpr JavaField kTypeField = {"mType", "Ljava/lang/String;"};
inline constexpr JavaField kTagsElementField = {"mTagsElement", "[Ljava/lang/String;"};

}  // namespace lumigram

#endif  // LUMIGRAM_JNI_ATTRIBUTE_FIELDS_H_
