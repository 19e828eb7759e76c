// Converts text of any bytes for Java. The virtual machine must get modified UTF-8, and no ASCII
// character may be lost. Input: the text.
#include "jni/java_text.h"

#include <jni.h>

#include <cstring>
#include <type_traits>

#include "fuzz/input.h"

using namespace lumigram::fuzz;

namespace {

std::string handed;

// The size of the sequence of modified UTF-8 at p; 0 if there is none.
size_t SequenceAt(const uint8_t* p) {
  const auto follows = [&](int i) { return (p[i] & 0xC0) == 0x80; };
  if (p[0] < 0x80) return 1;
  if (p[0] == 0xC0) return p[1] == 0x80 ? 2 : 0;
  if (p[0] >= 0xC2 && p[0] <= 0xDF) return follows(1) ? 2 : 0;
  if (p[0] >= 0xE0 && p[0] <= 0xEF)
    return follows(1) && follows(2) && (p[0] != 0xE0 || p[1] >= 0xA0) ? 3 : 0;
  return 0;
}

jstring NewString(JNIEnv*, const char* text) {
  handed = text;
  return nullptr;
}
jboolean NoException(JNIEnv*) { return JNI_FALSE; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::remove_cvref_t<decltype(*JNIEnv::functions)> functions = {};
  functions.NewStringUTF = NewString;
  functions.ExceptionCheck = NoException;
  JNIEnv env;
  env.functions = &functions;
  std::string text(reinterpret_cast<const char*>(data),
                   std::min(size, lumigram::kMaxJavaTextField - 1));
  text.resize(strlen(text.c_str()));
  const auto block = Block(text.size() + 1);
  memcpy(block.get(), text.data(), text.size());
  (void)lumigram::NewStringOfBoundedText(&env, block.get());

  const uint8_t* p = reinterpret_cast<const uint8_t*>(handed.c_str());
  std::string ascii, asciiHanded;
  while (*p != 0) {
    const size_t step = SequenceAt(p);
    Require(step != 0, "the virtual machine gets modified UTF-8");
    if (step == 1) asciiHanded += static_cast<char>(*p);
    p += step;
  }
  for (char c : text) {
    if (static_cast<uint8_t>(c) < 0x80) ascii += c;
  }
  Require(ascii == asciiHanded, "no ASCII character is lost");
  Require(handed.size() >= text.size(), "no text becomes shorter");
  return 0;
}
