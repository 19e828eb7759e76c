// The natives for one picture: a tag group, a blob, and the writing of an object.
#include <gtest/gtest.h>

#include "jni/native_methods.h"
#include "tests/support/fake_jni.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

namespace lumigram::test {
namespace {

const std::string kTwoTags = "<emoji><tags name=\"a\">\xFF</tags><tags name=\"a\">2</tags>";

class JniPicture : public testing::Test {
 protected:
  jstring Text(std::string_view text) { return vm_.Argument<jstring>(vm_.String(text)); }

  // The status and the results, which were "old".
  std::string LookUp(const std::string& path, std::string_view name, size_t entries = 10) {
    JavaObject* results = vm_.Make({.elements = {entries, vm_.String("old")}});
    std::string all = std::to_string(Java_lumigram_jni_LumigramJni_getLumigramTagInfo(
        vm_.Env(), nullptr, Text(path), Text(name), vm_.Argument<jobjectArray>(results)));
    for (const JavaObject* element : results->elements) all += "," + element->text;
    return all;
  }

  // The blob's bytes; "null".
  std::string Blob(const std::string& path, std::string_view label, std::string_view name) {
    const auto array = Java_lumigram_jni_LumigramJni_getLumigramApplicationExtensionInfo(
        vm_.Env(), nullptr, Text(path), Text(label), Text(name));
    if (array == nullptr) return "null";
    const std::string bytes(vm_.At(array)->bytes.begin(), vm_.At(array)->bytes.end());
    vm_.Env()->DeleteLocalRef(array);
    return bytes;
  }

  TempFolder folder_;
  FakeJni vm_;
};

TEST_F(JniPicture, LooksUpATagGroup) {
  const std::string path = folder_.Write("a.png", PngStart() + PngDocument(kTwoTags) + kPngEnd);
  const std::string found = "0,\xEF\xBF\xBD,2,,,,,,,,";
  EXPECT_EQ(LookUp(path, "a", 11), found + ",old");
  EXPECT_EQ(LookUp(path, "a", 1), "-99,old");
  EXPECT_EQ(LookUp("missing", std::string(257, 'a')).substr(0, 7), "-10,old");
  EXPECT_EQ(LookUp("missing", std::string(256, 'a')).substr(0, 7), "-21,old");
  EXPECT_EQ(LookUp("missing.gif", "a").substr(0, 7), "-20,old");
  std::string result;
  vm_.FailEach([&] { result = LookUp(path, "a"); },
               [&](const std::string& failed) {
                 const std::string status = failed == "GetStringUTFChars" ? "-10" : "-99";
                 EXPECT_EQ(result.substr(0, 3), failed.empty() ? found.substr(0, 3) : status);
               });
}

TEST_F(JniPicture, CopiesABlob) {
  const std::string bytes("a\0\xFF", 3);
  const std::string png = folder_.Write(
      "a.png", PngStart() + PngBlob("EMJ00000000", "x1", test::Text(bytes)) + kPngEnd);
  const std::string jpg = folder_.Write("a.jpg", kJpegStart + JpegFrame() + kJpegEnd);
  for (const std::string& path : {jpg, folder_.Path("b.png"), folder_.Write("0.png", {}),
                                  folder_.Write("cut.png", PngStart())}) {
    EXPECT_EQ(Blob(path, "EMJ", "x1"), "null") << path;
  }
  EXPECT_EQ(Blob(png, "EMJ", "x2"), "null");
  std::string found;
  vm_.FailEach(
      [&] { found = Blob(png, "EMJ", "x"); },
      [&](const std::string& failed) { EXPECT_EQ(found, failed.empty() ? bytes : "null"); });
}

}  // namespace
}  // namespace lumigram::test
