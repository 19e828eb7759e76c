// Tag groups and blobs of one picture, handed to Java.
#include <gtest/gtest.h>

#include "jni/native_methods.h"
#include "tests/support/fake_jni.h"
#include "tests/support/gif_builder.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

constexpr auto* kLookUp = Java_lumigram_jni_LumigramJni_getLumigramTagInfo;
constexpr auto* kBlob = Java_lumigram_jni_LumigramJni_getLumigramApplicationExtensionInfo;
constexpr auto* kRead = Java_lumigram_jni_LumigramJni_getLumigramAttrInfo;

class JniLookup : public testing::Test {
 protected:
  jstring Text(std::string_view text) { return vm_.Argument<jstring>(vm_.String(text)); }

  // The status and the results, which were ten times "old".
  std::pair<int, std::string> LookUp(const std::string& path, std::string_view name,
                                     size_t entries = 10) {
    JavaObject* results = vm_.Make({.elements = {entries, vm_.String("old")}});
    const int status =
        kLookUp(vm_.Env(), nullptr, Text(path), Text(name), vm_.Argument<jobjectArray>(results));
    std::string all;
    for (const JavaObject* element : results->elements) all += element->text + ",";
    return {status, all};
  }

  // The blob's bytes; "null".
  std::string Blob(const std::string& path, std::string_view label, std::string_view name) {
    const jbyteArray array = kBlob(vm_.Env(), nullptr, Text(path), Text(label), Text(name));
    if (array == nullptr) return "null";
    const std::string bytes(vm_.At(array)->bytes.begin(), vm_.At(array)->bytes.end());
    vm_.Env()->DeleteLocalRef(array);
    return bytes;
  }

  TempFolder folder_;
  FakeJni vm_;
};

TEST_F(JniLookup, GivesTheContentsOfATagGroup) {
  const std::string path = folder_.Write(
      "a.png", PngStart() +
                   PngDocument("<emoji><tags name=\"a\">\xFF</tags><tags name=\"a\">2</tags>") +
                   kPngEnd);
  const std::string old = "old,old,old,old,old,old,old,old,old,old,";
  const std::string found = "\xEF\xBF\xBD,2,,,,,,,,,";
  EXPECT_EQ(LookUp(path, "a"), std::pair(0, found));
  EXPECT_EQ(LookUp(path, "a", 11), std::pair(0, found + "old,"));
  EXPECT_EQ(LookUp(path, "a", 9), std::pair(-99, old.substr(4)));
  EXPECT_EQ(LookUp(path, "b"), std::pair(0, std::string(10, ',')));
  EXPECT_EQ(LookUp(path, std::string(256, 'a')), std::pair(-99, old));
  EXPECT_EQ(LookUp("missing", std::string(257, 'a')), std::pair(-10, old));
  EXPECT_EQ(LookUp("missing", "a"), std::pair(-21, old));
  EXPECT_EQ(LookUp("missing.gif", "a"), std::pair(-20, old));
  std::pair<int, std::string> result;
  vm_.FailEach(
      [&] { result = LookUp(path, "a"); },
      [&](const std::string& failed) {
        EXPECT_EQ(result.first, failed.empty() ? 0 : failed == "GetStringUTFChars" ? -10 : -99);
      });
}

TEST_F(JniLookup, NeedsItsArguments) {
  JNIEnv* env = vm_.Env();
  for (int absent : {0, 1, 2}) {
    jstring a[] = {Text(""), Text(""), Text("")};
    a[absent] = nullptr;
    const auto results = jobjectArray(a[2]);
    EXPECT_EQ(kLookUp(env, nullptr, a[0], a[1], results), -10);
    EXPECT_EQ(kBlob(env, nullptr, a[0], a[1], a[2]), nullptr);
    EXPECT_EQ(kRead(env, nullptr, jobjectArray(a[0]), jobjectArray(a[1]), jbyteArray(a[2])), -10);
  }
}

TEST_F(JniLookup, GivesTheBytesOfABlob) {
  const Bytes ab = {'a', 0, 0xFF}, data(1000, 'x');
  const std::string gif = folder_.Write("a.gif", GifScreen() + GifBlob("EMJ00000000", "x1", ab) +
                                                     GifBlob("EMJ00000000", "x2", data) + kGifEnd);
  const std::string png =
      folder_.Write("a.png", PngStart() + PngBlob("EMJ00000000", "x2", data) + kPngEnd);
  const std::string jpg = folder_.Write("a.jpg", kJpegStart + JpegFrame() + kJpegEnd);
  EXPECT_EQ(Blob(gif, "EMJ", "x"), std::string("a\0\xFF", 3));
  EXPECT_EQ(Blob(gif, "", "x2"), std::string(1000, 'x'));
  EXPECT_EQ(Blob(png, "EMJ", "x2"), std::string(1000, 'x'));
  for (const std::string& path : {png, jpg, folder_.Path("b.png"), folder_.Write("0.png", {}),
                                  folder_.Write("cut.gif", GifScreen())}) {
    EXPECT_EQ(Blob(path, "EMJ", "x1"), "null") << path;
  }
  std::string found;
  vm_.FailEach([&] { found = Blob(gif, "EMJ", "x1"); },
               [&](const std::string& failed) { EXPECT_EQ(found == "null", !failed.empty()); });
}

}  // namespace
}  // namespace lumigram::test
