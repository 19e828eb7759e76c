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
  EXPECT_EQ(Blob(folder_.Write("a.jpg", kJpegStart + JpegFrame() + kJpegEnd), "", ""), "null");
  EXPECT_EQ(Blob(folder_.Write("0.png", {}), "EMJ", "x1"), "null");
  EXPECT_EQ(Blob(png, "EMJ", "x2"), "null");
  std::string found;
  vm_.FailEach(
      [&] { found = Blob(png, "EMJ", "x"); },
      [&](const std::string& failed) { EXPECT_EQ(found, failed.empty() ? bytes : "null"); });
}

constexpr char kLabels[] = "mApplicationExtensionLabelName";
constexpr char kUris[] = "mApplicationExtensionBinaryDataUri";

class JniWrite : public JniPicture {
 protected:
  int Write(const Values& object, const std::string& path) {
    return Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(
        vm_.Env(), nullptr, Text(path), vm_.Argument<jobject>(vm_.Object(object)));
  }

  const std::string blob_ = folder_.Write("wink.dat", test::Text("blob"));
  const Bytes kept_ = PngBlob("EMJ00000000", "b.dat", test::Text("b"));
  const Bytes old_ = PngStart() + kept_ + kPngImage + kPngEnd;
  const std::string path_ = folder_.Write("a.png", old_);
  // The second tag has a new blob, the third one that the picture has.
  const Values full_ = {{"mName", "Asmile||wink|*7"},
                        {"mNote", "Ahappy|dropped|*8"},
                        {"mPart", "B1|2|-1"},
                        {"mCategory", "Sface"},
                        {"mType", "S~"},
                        {"mTags", "Acolor|motion|sound|-|unseen"},
                        {"mTagsElement", "Ayellow|ignored|file://THIS/a/b.dat"},
                        {kLabels, "A-|EMJ"},
                        {kUris, "A-|" + blob_}};
};

TEST_F(JniWrite, WritesEveryField) {
  EXPECT_EQ(Write(full_, path_), 0);
  const Bytes document = PngDocument(
      "<emoji><label><name>smile</name><note>happy</note><part>名詞</part></label>"
      "<label><name>wink</name></label><category>face</category><tags name=\"color\">yellow</tags>"
      "<tags name=\"motion\">file://THIS/wink.dat</tags>"
      "<tags name=\"sound\">file://THIS/a/b.dat</tags></emoji>");
  const Bytes added = PngBlob("EMJ" + std::string(8, '\0'), "wink.dat", test::Text("blob"));
  EXPECT_EQ(ReadWhole(path_), PngStart() + kept_ + document + added + kPngImage + kPngEnd);
  Values none = full_;
  none["mTags"] = "A~";
  none["mCategory"] = "S~";
  none["mName"] = "A*10";
  EXPECT_EQ(Write(none, path_), 0);
  EXPECT_EQ(ReadWhole(path_), PngStart() + PngDocument("<emoji></emoji>") + kPngImage + kPngEnd);
  // What stands behind the hundredth tag is not looked at.
  none["mTags"] = "Ac*101";
  none["mTagsElement"] = "Ax*100";
  EXPECT_EQ(Write(none, path_), 0);
}

TEST_F(JniWrite, RefusesWhatIsNotComplete) {
  // A field, its value or none when the class lacks it, and the status.
  std::vector<std::tuple<std::string, std::string, int>> rows = {
      {"mName", "A*9", -99},
      {"mName", "A1234567890123456789012345|*9", -41},
      {"mNote", "A*9", -99},
      {"mTagsElement", "Ayellow|-|x", -99},
      {"mTagsElement", "Afile://THIS/wink.dat|ignored|x", -50},
      // The name is taken before the text is cut.
      {"mTagsElement", "Afile://THIS/" + std::string(1100, 'x') + "/wink.dat|ignored|x", -50},
      {kLabels, "AEMJ|EMJ", -99},
      {kLabels, "A", -99},
      {kUris, "A-", -99},
      {kUris, "A-|wink.dat", -99},
      {kUris, "A-|/missing/wink.dat", -41},
  };
  for (const auto& [field, value] : full_) {
    rows.push_back({field, "", -99});
    if (value[0] != 'S' && field != "mTags") rows.push_back({field, value.substr(0, 1) + "~", -99});
  }
  for (const auto& [field, value, status] : rows) {
    Values object = full_;
    object[field] = value;
    if (value.empty()) object.erase(field);
    EXPECT_EQ(Write(object, path_), status) << field << value;
    EXPECT_EQ(ReadWhole(path_), old_) << field << value;
  }
  EXPECT_EQ(Write(full_, folder_.Path("a.bmp")), -21);
  EXPECT_EQ(Write(full_, folder_.Path("missing.png")), -20);
  EXPECT_EQ(Write({}, folder_.Path("a.bmp")), -99);
}

TEST_F(JniWrite, AFailureOfTheMachineLeavesThePictureAlone) {
  int status;
  const auto write = [&] {
    folder_.Write("a.png", old_);
    status = Write(full_, path_);
  };
  vm_.FailEach(write, [&](const std::string& failed) {
    EXPECT_EQ(status, failed.empty() ? 0 : -99);
    EXPECT_EQ(ReadWhole(path_) == old_, !failed.empty());
  });
}

}  // namespace
}  // namespace lumigram::test
