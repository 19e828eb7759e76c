// A function table for native methods over a small object model of our own. It counts what it
// lends, fails on demand as no virtual machine does, and fails the test for a use that one would
// not survive.
#ifndef LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_
#define LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_

#include <jni.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace lumigram::test {

struct JavaObject {
  const JavaObject* type = nullptr;                    // of a plain object: its class
  std::string text = {};                               // of a string, in modified UTF-8; a name
  std::vector<JavaObject*> elements = {};              // of an array of objects
  std::vector<jbyte> bytes = {};                       // of an array of bytes
  std::map<std::string, std::string> signatures = {};  // of a class: those of its fields, by name
  std::map<std::string, jlong> numbers = {};  // of a plain object: the values of its fields
  std::map<std::string, JavaObject*> objects = {};
};

class FakeJni {
 public:
  FakeJni();
  ~FakeJni() { CheckAllIsGivenBack(); }
  JNIEnv* Env() { return &env_; }

  JavaObject* Make(JavaObject object = {});
  JavaObject* String(std::string_view text) { return Make({.text = std::string(text)}); }
  // An object whose fields hold -7, "old", a hundred "old" and ten times 9.
  JavaObject* MakeOld(const JavaObject* type);

  // A reference for an argument; null for null. It stays the caller's.
  template <typename T>
  T Argument(JavaObject* object) {
    if (object != nullptr) ++arguments_;
    return static_cast<T>(NewRef(object));
  }
  // What a reference stands for.
  JavaObject* At(jobject ref);
  int Calls(const std::string& function) { return calls_[function]; }

  // Runs the call again and again, with its first fallible JNI call failing, then its second, and
  // so on, until nothing is left to fail. Each time it must have given back all that was lent to it
  // and left no exception; check() sees the name of the function that failed, the last time none.
  void FailEach(const std::function<void()>& call,
                const std::function<void(const std::string& failed)>& check);

 private:
  jobject NewRef(JavaObject* object);
  FakeJni& Enter();
  bool Fails(const char* function, bool raises = true);
  void CheckAllIsGivenBack() const;
  const std::string& NameOf(jobject object, jfieldID id, char kind);

  JNINativeInterface_ table_ = {};
  JNIEnv env_;
  std::vector<std::unique_ptr<JavaObject>> heap_;
  std::vector<JavaObject*> refs_;  // a released reference's number is given out again
  std::set<const void*> lentTexts_, lentBytes_;
  std::map<std::string, int> calls_;
  long arguments_ = 0;
  bool pending_ = false;
  int failIn_ = 0;
  std::string failed_;
};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_
