/* The yardstick of a safe rewrite, called from Java: open, fstat and read of the whole file, then a
 * new file, fsync and rename. */
#include <fcntl.h>
#include <jni.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

static void Require(int holds) {
  if (!holds) abort();
}

JNIEXPORT void JNICALL Java_lumigram_bench_Bench_rewrite(JNIEnv* env, jclass type,
                                                         jstring javaPath) {
  static char contents[1 << 22];
  const char* const path = (*env)->GetStringUTFChars(env, javaPath, NULL);
  const int in = open(path, O_RDONLY | O_CLOEXEC);
  struct stat status;
  Require(in >= 0 && fstat(in, &status) == 0 && status.st_size <= (off_t)sizeof(contents));
  const size_t size = (size_t)status.st_size;
  Require(read(in, contents, size) == status.st_size);
  close(in);
  char temporary[4096];
  Require(snprintf(temporary, sizeof(temporary), "%s.new", path) < (int)sizeof(temporary));
  const int out = open(temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  Require(out >= 0 && write(out, contents, size) == status.st_size && fsync(out) == 0);
  Require(close(out) == 0 && rename(temporary, path) == 0);
  (*env)->ReleaseStringUTFChars(env, javaPath, path);
  (void)type;
}
