#include "tests/support/fake_jni.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace lumigram::test {
namespace {

FakeJni* vm;  // of the running test

const std::map<char, std::string> kSignatures = {
    {'J', "J"}, {'B', "[B"}, {'S', "Ljava/lang/String;"}, {'A', "[Ljava/lang/String;"}};

bool AreEqual(const JavaObject* a, const JavaObject* b) {
  const auto value = [](const auto& field) { return field.second; };
  if (a == nullptr || b == nullptr) return a == b;
  return a->text == b->text && a->bytes == b->bytes &&
         std::ranges::equal(a->elements, b->elements, AreEqual) &&
         std::ranges::equal(a->fields, b->fields, AreEqual, value, value);
}

template <typename T>
T* LendCopy(const T* from, size_t size, std::set<const void*>* lent) {
  T* copy = new T[size];
  std::copy_n(from, size, copy);
  lent->insert(copy);
  return copy;
}

}  // namespace

JavaObject* FakeJni::Make(JavaObject object) {
  heap_.push_back(std::make_unique<JavaObject>(std::move(object)));
  return heap_.back().get();
}

JavaObject* FakeJni::Object(const Values& values) {
  JavaObject* object = Make();
  Values signatures;
  for (const auto& [name, value] : values) {
    const char kind = value[0];
    signatures[name] = kSignatures.at(kind);
    std::istringstream words(value.substr(1));
    JavaObject* made = String(kind == 'J' || kind == 'S' ? words.str() : "");
    object->fields[name] = words.str() == "~" ? nullptr : made;
    for (std::string word; (kind == 'A' || kind == 'B') && std::getline(words, word, '|');) {
      const size_t star = word.find('*');
      const size_t times = star < word.size() ? std::stoul(word.substr(star + 1)) : 1;
      word = word.substr(0, star);
      if (kind == 'B') made->bytes.insert(made->bytes.end(), times, jbyte(std::atoi(word.c_str())));
      if (kind == 'A')
        made->elements.insert(made->elements.end(), times, word == "-" ? nullptr : String(word));
    }
  }
  JavaObject*& type = classes_[signatures];
  if (type == nullptr) type = Make({.signatures = signatures});
  object->type = type;
  return object;
}

bool FakeJni::Holds(const JavaObject* object, const Values& values) {
  return AreEqual(object, Object(values));
}

jobject FakeJni::NewRef(JavaObject* object) {
  if (object == nullptr) return nullptr;
  auto slot = std::find(refs_.begin(), refs_.end(), nullptr);
  if (slot == refs_.end()) slot = refs_.insert(slot, nullptr);
  *slot = object;
  return reinterpret_cast<jobject>(slot - refs_.begin() + 1);
}

JavaObject* FakeJni::At(jobject ref) {
  JavaObject* object = refs_.at(reinterpret_cast<size_t>(ref) - 1);
  EXPECT_NE(object, nullptr) << "use of a released reference";
  return object;
}

FakeJni& FakeJni::Enter() {
  EXPECT_FALSE(isCritical_) << "a call while the array's bytes are lent";
  EXPECT_FALSE(pending_) << "a call with an exception pending";
  return *this;
}

bool FakeJni::Fails(const char* function) {
  Enter();
  if (failIn_ == 0 || --failIn_ > 0) return false;
  failed_ = function;
  pending_ = true;
  return true;
}

void FakeJni::CheckAllIsGivenBack() const {
  const auto isHeld = [](const JavaObject* object) { return object != nullptr; };
  EXPECT_EQ(std::count_if(refs_.begin(), refs_.end(), isHeld), arguments_);
  EXPECT_LE(std::ssize(refs_), arguments_ + 16) << "more references than JNI promises";
  EXPECT_TRUE(lent_.empty());
  EXPECT_FALSE(pending_);
}

void FakeJni::FailEach(const std::function<void()>& call,
                       const std::function<void(const std::string& failed)>& check) {
  int n = 0;
  do {
    failIn_ = ++n;
    failed_.clear();
    call();
    SCOPED_TRACE("call " + std::to_string(n) + ", " + failed_);
    CheckAllIsGivenBack();
    check(failed_);
  } while (!failed_.empty() && !testing::Test::HasFailure());
  failIn_ = 0;
}

JavaObject*& FakeJni::FieldOf(jobject object, jfieldID id, bool isNumber) {
  const auto& field = *reinterpret_cast<const Values::value_type*>(id);
  const Values& declared = Enter().At(object)->type->signatures;
  EXPECT_EQ(&*declared.find(field.first), &field) << field.first << " of another class";
  EXPECT_EQ(field.second == "J", isNumber) << field.first;
  return At(object)->fields[field.first];
}

// An exception when the array is too short, like a virtual machine.
void FakeJni::CopyRegion(std::vector<jlong>& array, jsize at, jsize size,
                         const std::function<void(jlong&)>& copy) {
  pending_ = at + size > std::ssize(array);
  if (!pending_) std::for_each_n(array.begin() + at, size, copy);
}

// Puts a function into the table that may fail, with null or 0 and an exception.
template <typename Result, typename... Arguments, typename Function>
void FakeJni::MayFail(const char* name, Result (*&entry)(JNIEnv*, Arguments...), Function) {
  static const char* itsName;  // one variable for each function, because each has its own type
  itsName = name;
  entry = [](JNIEnv*, Arguments... arguments) -> Result {
    return vm->Fails(itsName) ? Result() : Result(Function()(arguments...));
  };
}
#define MAY_FAIL(name, ...) MayFail(#name, table_.name, __VA_ARGS__)

FakeJni::FakeJni() {
  vm = this;
  env_.functions = &table_;

  // Allowed while an exception is pending.
  table_.ExceptionCheck = [](JNIEnv*) -> jboolean { return vm->pending_; };
  table_.ExceptionClear = [](JNIEnv*) { vm->pending_ = false; };
  table_.DeleteLocalRef = [](JNIEnv*, jobject ref) {
    vm->At(ref);
    vm->refs_[reinterpret_cast<size_t>(ref) - 1] = nullptr;
  };
  table_.ReleaseStringUTFChars = [](JNIEnv*, jstring string, const char* text) {
    EXPECT_EQ(vm->lent_.erase(text), 1u);
    EXPECT_EQ(vm->At(string)->text, text) << "released after its reference";
    delete[] text;
  };
  table_.ReleaseByteArrayElements = [](JNIEnv*, jbyteArray array, jbyte* bytes, jint mode) {
    EXPECT_EQ(vm->lent_.erase(bytes), 1u);
    auto& kept = vm->At(array)->bytes;
    if (mode == 0) std::copy_n(bytes, kept.size(), kept.begin());
    delete[] bytes;
  };

  table_.ReleasePrimitiveArrayCritical = [](JNIEnv*, jarray, void* bytes, jint mode) {
    EXPECT_EQ(vm->lent_.erase(bytes), 1u);
    EXPECT_EQ(mode, JNI_ABORT);
    vm->isCritical_ = false;
    delete[] static_cast<jbyte*>(bytes);
  };

  // Cannot fail.
  table_.IsSameObject = [](JNIEnv*, jobject a, jobject b) -> jboolean {
    return vm->Enter().At(a) == vm->At(b);
  };
  table_.SetObjectField = [](JNIEnv*, jobject object, jfieldID id, jobject value) {
    vm->FieldOf(object, id) = vm->At(value);
  };
  table_.SetLongField = [](JNIEnv*, jobject object, jfieldID id, jlong value) {
    vm->FieldOf(object, id, true) = vm->String(std::to_string(value));
  };

  // May fail here, even those that cannot fail in JNI.
  MAY_FAIL(GetObjectClass, [](jobject object) {
    return vm->NewRef(const_cast<JavaObject*>(vm->At(object)->type));
  });
  MAY_FAIL(FindClass, [](const char* name) { return vm->NewRef(vm->String(name)); });
  MAY_FAIL(GetFieldID, [](jclass type, const char* name, const char* signature) {
    auto& declared = vm->At(type)->signatures;
    const auto found = declared.find(name);
    vm->pending_ = found == declared.end() || found->second != signature;
    return vm->pending_ ? nullptr : &*found;
  });
  MAY_FAIL(GetStaticMethodID, [](jclass type, const char* name, const char* signature) {
    EXPECT_EQ(vm->At(type)->text + "." + name + signature,
              "java/lang/System.arraycopy(Ljava/lang/Object;ILjava/lang/Object;II)V");
    return vm;
  });
  MAY_FAIL(CallStaticVoidMethodA, [](jclass type, jmethodID id, const jvalue* a) {
    EXPECT_TRUE(vm->At(type)->text == "java/lang/System" && id == jmethodID(vm));
    auto &from = vm->At(a[0].l)->elements, &to = vm->At(a[2].l)->elements;
    for (jint i = 0; i < a[4].i; ++i) to.at(size_t(a[3].i + i)) = from.at(size_t(a[1].i + i));
  });
  MAY_FAIL(GetArrayLength, [](jarray array) {
    return vm->At(array)->elements.size() + vm->At(array)->bytes.size() +
           vm->At(array)->longs.size();
  });
  MAY_FAIL(GetObjectArrayElement, [](jobjectArray array, jsize i) {
    return vm->NewRef(vm->At(array)->elements.at(size_t(i)));
  });
  MAY_FAIL(SetObjectArrayElement, [](jobjectArray array, jsize i, jobject value) {
    vm->At(array)->elements.at(size_t(i)) = vm->At(value);
  });
  MAY_FAIL(GetObjectField,
           [](jobject object, jfieldID id) { return vm->NewRef(vm->FieldOf(object, id)); });
  MAY_FAIL(NewStringUTF, [](const char* text) { return vm->NewRef(vm->String(text)); });
  MAY_FAIL(NewObjectArray, [](jsize size, jclass type, jobject each) {
    EXPECT_EQ(vm->At(type)->text, "java/lang/String");
    return vm->NewRef(
        vm->Make({.elements = {size_t(size), each == nullptr ? nullptr : vm->At(each)}}));
  });
  MAY_FAIL(NewByteArray, [](jsize size) {
    return vm->NewRef(vm->Make({.bytes = std::vector<jbyte>(size_t(size))}));
  });
  MAY_FAIL(GetPrimitiveArrayCritical, [](jarray array, jboolean*) {
    auto& bytes = vm->At(array)->bytes;
    vm->isCritical_ = true;
    return LendCopy(bytes.data(), bytes.size(), &vm->lent_);
  });
  MAY_FAIL(GetByteArrayRegion, [](jbyteArray array, jsize at, jsize size, jbyte* to) {
    std::copy_n(vm->At(array)->bytes.begin() + at, size, to);
  });
  MAY_FAIL(SetByteArrayRegion, [](jbyteArray array, jsize at, jsize size, const jbyte* from) {
    std::copy_n(from, size, vm->At(array)->bytes.begin() + at);
  });
  MAY_FAIL(SetLongArrayRegion, [](jlongArray array, jsize at, jsize size, const jlong* from) {
    vm->CopyRegion(vm->At(array)->longs, at, size, [&](jlong& to) { to = *from++; });
  });
  MAY_FAIL(GetLongArrayRegion, [](jlongArray array, jsize at, jsize size, jlong* to) {
    vm->CopyRegion(vm->At(array)->longs, at, size, [&](jlong from) { *to++ = from; });
  });
  MAY_FAIL(SetIntArrayRegion, [](jintArray array, jsize at, jsize size, const jint* from) {
    vm->CopyRegion(vm->At(array)->longs, at, size, [&](jlong& to) { to = *from++; });
  });
  MAY_FAIL(GetStringUTFLength, [](jstring string) { return vm->At(string)->text.size(); });
  MAY_FAIL(GetStringUTFChars, [](jstring string, jboolean*) {
    const std::string& text = vm->At(string)->text;
    return LendCopy(text.c_str(), text.size() + 1, &vm->lent_);
  });
  MAY_FAIL(GetByteArrayElements, [](jbyteArray array, jboolean*) {
    return LendCopy(vm->At(array)->bytes.data(), vm->At(array)->bytes.size(), &vm->lent_);
  });
}

}  // namespace lumigram::test
