// A function table for native methods, with a small object model of our own. It tracks references
// and borrowed memory, fails on demand, and fails the test for calls that could crash a virtual
// machine.
#ifndef LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_
#define LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_

#include <jni.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace lumigram::test {

struct JavaObject {
  const JavaObject* type = nullptr;        // of an object with fields: its class
  std::string text = {};                   // of a string, in modified UTF-8; a number or name
  std::vector<JavaObject*> elements = {};  // of an array of objects
  std::vector<jbyte> bytes = {};           // of an array of bytes
  std::vector<jlong> longs = {};           // of an array of longs or ints
  std::map<std::string, JavaObject*> fields = {};      // their values
  std::map<std::string, std::string> signatures = {};  // of a class: those of its fields
};

// The values of an object's fields by name. Each value begins with its kind: "J-7" (a number),
// "Stext" (a string), "B1|2" (an array of bytes), "Aa|b*3|-" (an array of strings: a, b three
// times, null). A "~" after the kind is a null reference.
using Values = std::map<std::string, std::string>;

class FakeJni {
 public:
  FakeJni();
  ~FakeJni() { CheckAllIsGivenBack(); }
  JNIEnv* Env() { return &env_; }

  JavaObject* Make(JavaObject object = {});
  JavaObject* String(std::string_view text) { return Make({.text = std::string(text)}); }
  // An object with these fields. Objects with the same fields have the same class.
  JavaObject* Object(const Values& values);
  // Whether the object's fields hold these values.
  bool Holds(const JavaObject* object, const Values& values);

  // A reference for an argument; null for null. The native method must not release it.
  template <typename T>
  T Argument(JavaObject* object) {
    if (object != nullptr) ++arguments_;
    return static_cast<T>(NewRef(object));
  }
  JavaObject* At(jobject ref);  // the object of a reference

  // Runs the call while its first fallible JNI call fails, then its second one, and so on until
  // none fails. Each time it must release all references and memory, and leave no exception
  // pending. check() gets the name of the function that failed; at the end an empty name.
  void FailEach(const std::function<void()>& call,
                const std::function<void(const std::string& failed)>& check);

 private:
  jobject NewRef(JavaObject* object);
  FakeJni& Enter();
  bool Fails(const char* function);
  template <typename Result, typename... Arguments, typename Function>
  void MayFail(const char* name, Result (*&entry)(JNIEnv*, Arguments...), Function);
  void CheckAllIsGivenBack() const;
  void CopyRegion(std::vector<jlong>& array, jsize at, jsize size,
                  const std::function<void(jlong&)>& copy);
  JavaObject*& FieldOf(jobject object, jfieldID id, bool isNumber = false);

  // The type has another name in a JDK's jni.h than in Android's.
  std::remove_cvref_t<decltype(*JNIEnv::functions)> table_ = {};
  JNIEnv env_;
  std::vector<std::unique_ptr<JavaObject>> heap_;
  std::map<Values, JavaObject*> classes_;  // by the signatures of their fields
  std::vector<JavaObject*> refs_;          // a released reference's number is given out again
  std::set<const void*> lent_;
  long arguments_ = 0;
  bool pending_ = false;
  bool isCritical_ = false;
  int failIn_ = 0;
  std::string failed_;
};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_FAKE_JNI_H_
