// The native methods of the Java classes in lumigram.jni. All are static.
#ifndef LUMIGRAM_JNI_NATIVE_METHODS_H_
#define LUMIGRAM_JNI_NATIVE_METHODS_H_

#include <jni.h>

extern "C" {

// Reads the metadata of the pictures at paths into the attribute objects of the same index, and
// stores one result code for each: 0, even for a picture without metadata; a reader's status or
// that of OpenFile(); -99 for a missing object, path, field or array and a file that is empty or
// too large. Reads as many files as the shortest array has elements. Returns 0; -10 when an
// argument is null; -99 when an array cannot be accessed or there is no memory.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(JNIEnv* env, jclass,
                                                                         jobjectArray paths,
                                                                         jobjectArray attrs,
                                                                         jbyteArray results);

// Writes the metadata of one attribute object into the picture at path. Returns 0; -10 when an
// argument is null; -99 for an object or path that cannot be used, or without memory; -50 for a
// blob with the name of an earlier entry; -21 or -20 from OpenFile(); -41 when the picture cannot
// be written, whatever the reason.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(JNIEnv* env, jclass,
                                                                         jstring path,
                                                                         jobject attr);

// Stores the contents of the first ten elements of one tag group of a picture, and empty strings
// after them. Returns 0; -10 when an argument is null, a text cannot be read or the name is over
// 256 bytes; -99 when results has fewer than ten entries, a string cannot be created or stored,
// or there is no memory; else the status of OpenFile() or GetTagInfo().
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramJni_getLumigramTagInfo(JNIEnv* env, jclass,
                                                                        jstring path,
                                                                        jstring tagName,
                                                                        jobjectArray results);

// Returns a new array with the bytes of a picture's first blob whose label and name begin with the
// given ones; null when there is no such blob, when it is empty, and for every failure.
JNIEXPORT jbyteArray JNICALL Java_lumigram_jni_LumigramJni_getLumigramApplicationExtensionInfo(
    JNIEnv* env, jclass, jstring path, jstring labelName, jstring fileName);

// The native methods of LumigramFiles, which never wait for a picture to be written. Their Java
// declarations have the contracts.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramFiles_readPictures(JNIEnv* env, jclass,
                                                                    jobjectArray paths,
                                                                    jobjectArray attrs,
                                                                    jlongArray fingerprints,
                                                                    jbyteArray results);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramFiles_writePicture(
    JNIEnv* env, jclass, jstring path, jobject attr, jobjectArray newBlobs, jlongArray expected,
    jboolean replacesUnread, jlongArray details);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramFiles_lookUpTag(JNIEnv* env, jclass, jstring path,
                                                                 jstring tagName,
                                                                 jobjectArray results);
JNIEXPORT jbyteArray JNICALL Java_lumigram_jni_LumigramFiles_readBlob(
    JNIEnv* env, jclass, jstring path, jstring labelName, jstring fileName, jintArray status);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramFiles_findObstacle(JNIEnv* env, jclass,
                                                                    jstring path,
                                                                    jboolean isWriting, jint error,
                                                                    jobjectArray words);

JNIEXPORT jobjectArray JNICALL Java_lumigram_jni_LumigramFiles_listBlobs(JNIEnv* env, jclass,
                                                                         jstring path,
                                                                         jintArray status);

// The native methods of LumigramBytes. Their Java declarations have the contracts.
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramBytes_findKind(JNIEnv* env, jclass,
                                                                jbyteArray bytes);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramBytes_readPictures(
    JNIEnv* env, jclass, jobjectArray pictures, jbyteArray kinds, jobjectArray attrs,
    jlongArray fingerprints, jbyteArray results);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramBytes_writePicture(
    JNIEnv* env, jclass, jbyteArray bytes, jint kind, jobject attr, jobjectArray newBlobs,
    jlongArray expected, jboolean replacesUnread, jlongArray details, jobjectArray written);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramBytes_lookUpTag(JNIEnv* env, jclass,
                                                                 jbyteArray bytes, jint kind,
                                                                 jstring tagName,
                                                                 jobjectArray results);
JNIEXPORT jbyteArray JNICALL Java_lumigram_jni_LumigramBytes_readBlob(JNIEnv* env, jclass,
                                                                      jbyteArray bytes, jint kind,
                                                                      jstring labelName,
                                                                      jstring fileName,
                                                                      jintArray status);
JNIEXPORT jobjectArray JNICALL Java_lumigram_jni_LumigramBytes_listBlobs(JNIEnv* env, jclass,
                                                                         jbyteArray bytes,
                                                                         jint kind,
                                                                         jintArray status);
JNIEXPORT jint JNICALL Java_lumigram_jni_LumigramBytes_findObstacle(JNIEnv* env, jclass,
                                                                    jbyteArray bytes, jint kind,
                                                                    jobjectArray words);

// Returns the version of the library, or null with a pending exception when there is no memory.
JNIEXPORT jstring JNICALL Java_lumigram_jni_LibraryLoader_libraryVersion(JNIEnv* env, jclass);

}  // extern "C"

#endif  // LUMIGRAM_JNI_NATIVE_METHODS_H_
