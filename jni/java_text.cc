#include "jni/java_text.h"

#include <string_view>

#include "core/base/utf8.h"

namespace lumigram {
namespace {

// Whether Java accepts the text unchanged: it accepts all sequences but those of four bytes.
bool IsPlain(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character sequence = FirstSequence(text);
    if (sequence.code >= kFirstSupplementary) return false;  // kNoCharacter is above it, too.
    text.remove_prefix(sequence.size);
  }
  return true;
}

// Writes at most three bytes for every byte of the text, and the terminator.
void Convert(std::string_view text, char* out) {
  while (!text.empty()) {
    const Utf8Character sequence = FirstSequence(text);
    const bool isNone = sequence.code == kNoCharacter;
    out = PutJavaCharacter(isNone ? kReplacementCharacter : sequence.code, out);
    text.remove_prefix(sequence.size);
  }
  *out = '\0';
}

}  // namespace

jstring NewStringOfBoundedText(JNIEnv* env, const char* text) {
  if (IsPlain(text)) return env->NewStringUTF(text);
  char converted[3 * (kMaxJavaTextField - 1) + 1];
  Convert(text, converted);
  return env->NewStringUTF(converted);
}

}  // namespace lumigram
