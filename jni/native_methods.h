// The native methods of the Java class lumigram.jni.LumigramJni. All are static.
#ifndef LUMIGRAM_JNI_NATIVE_METHODS_H_
#define LUMIGRAM_JNI_NATIVE_METHODS_H_

#include <jni.h>

extern "C" {

// Reads the metadata of the pictures at paths into the attribute objects of the same index, and
// stores one result code each: 0, also for a picture without metadata; a reader's status or that of
// OpenFile(); -99 for a missing object, path, field or array and a file that is empty or too large.
// As many files as the shortest array has elements. Returns 0; -10 when an argument is null; -99
// when the results cannot be had or there is no memory.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(JNIEnv* env, jclass,
                                                                         jobjectArray paths,
                                                                         jobjectArray attrs,
                                                                         jbyteArray results);

// Writes the metadata of one attribute object into the picture at path. Returns 0; -10 when an
// argument is null; -99 for an object that cannot be used; -50 for a blob whose name an earlier
// entry has; -21 or -20 from OpenFile(); -41 when the picture cannot be written, whatever the
// reason.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(JNIEnv* env, jclass,
                                                                         jstring path,
                                                                         jobject attr);

// Stores the contents of a picture's first ten elements of one tag group, and empty strings behind
// them. Returns 0; -10 when an argument is null, a text cannot be had or the name is over 256
// bytes; -99 when results has fewer than ten entries or a string cannot be made or stored; else the
// status of OpenFile() or GetTagInfo().
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_getLumigramTagInfo(JNIEnv* env, jclass,
                                                                        jstring path,
                                                                        jstring tagName,
                                                                        jobjectArray results);

// A new array with the bytes of a picture's first blob whose label and name begin with the given
// ones; null when there is none and for every failure.
JNIEXPORT jbyteArray JNICALL Java_lumigram_jni_LumigramJni_getLumigramApplicationExtensionInfo(
    JNIEnv* env, jclass, jstring path, jstring labelName, jstring fileName);

}  // extern "C"

#endif  // LUMIGRAM_JNI_NATIVE_METHODS_H_
