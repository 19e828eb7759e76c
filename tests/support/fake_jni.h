// A function table for native methods over a small object model of our own. It counts what it
// lends, fails on demand, and fails the test for a use that a virtual machine would not survive.
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
  const JavaObject* type = nullptr;        // of an object with fields: its class
  std::string text = {};                   // of a string, in modified UTF-8; a number or name
  std::vector<JavaObject*> elements = {};  // of an array of objects
  std::vector<jbyte> bytes = {};           // of an array of bytes
  std::map<std::string, JavaObject*> fields = {};      // their values
  std::map<std::string, std::string> signatures = {};  // of a class: those of its fields
};

// The values of an object's fields by name, each with its kind in front: "J-7", "Stext" (a string),
// "B1|2" (an array of bytes), "Aa|b*3|-" (an array of strings: b three times, and a null one). With
// "~" behind the kind it is null.
using Values = std::map<std::string, std::string>;

class FakeJni {
 public:
  FakeJni();
  ~FakeJni() { CheckAllIsGivenBack(); }
  JNIEnv* Env() { return &env_; }

  JavaObject* Make(JavaObject object = {});
  JavaObject* String(std::string_view text) { return Make({.text = std::string(text)}); }
  // An object with these fields; those with the same fields are of one class.
  JavaObject* Object(const Values& values);
  // Whether the object's fields hold these values.
  bool Holds(const JavaObject* object, const Values& values);

  // A reference for an argument; null for null. It stays the caller's.
  template <typename T>
  T Argument(JavaObject* object) {
    if (object != nullptr) ++arguments_;
    return static_cast<T>(NewRef(object));
  }
  JavaObject* At(jobject ref);  // what it stands for

  // Runs the call with its first fallible JNI call failing, then with its second, and so on until
  // none fails. Each time it must have given back all that was lent to it and left no exception.
  // check() sees the name of the function that failed, the last time none.
  void FailEach(const std::function<void()>& call,
                const std::function<void(const std::string& failed)>& check);

 private:
  jobject NewRef(JavaObject* object);
  FakeJni& Enter();
  bool Fails(const char* function);
  template <typename Result, typename... Arguments, typename Function>
  void MayFail(const char* name, Result (*&entry)(JNIEnv*, Arguments...), Function);
  void CheckAllIsGivenBack() const;
  JavaObject*& FieldOf(jobject object, jfieldID id, bool isNumber = false);

  JNINativeInterface_ table_ = {};
  JNIEnv env_;
  std::vector<std::unique_ptr<JavaObject>> heap_;
  std::map<Values, JavaObject*> classes_;  // by the signatures of their fields
  std::vector<JavaObject*> refs_;          // a released reference's number is given out again
  std::set<const void*> lent_;
  long arguments_ = 0;
  bool pending_ = false;
  int failIn_ = 0;
  std::string failed_;
};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_
