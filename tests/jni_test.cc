// The native methods: the batch read, the lookup of a tag group and of a blob, and the write.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "tests/support/fail_calls.h"
#include "tests/support/fake_jni.h"
#include "tests/support/jpeg_builder.h"
#include "tests/support/png_builder.h"

// Replaces sleep(): runs this function and does not wait.
static std::function<void()> onPause;

extern "C" unsigned sleep(unsigned) {
  if (onPause != nullptr) onPause();
  return 0;
}

namespace lumigram::test {
namespace {

Bytes Png(const std::string& inRoot) {
  return PngStart() + PngDocument("<emoji>" + inRoot + "</emoji>") + kPngImage + kPngEnd;
}

const Bytes kBarePng = PngStart() + kPngImage + kPngEnd;
const Bytes kFullPng =
    Png(Label("smile", "<note>happy</note><part>名詞</part>") +
        Label("wink", "<part>unknown</part>") + Tag("color", "yellow") +
        "<category>face</category><type></type>" + Tag("motion", "") + Tag("color", "red"));

std::string Number(size_t n) { return std::string("J").append(std::to_string(n)); }
Values Sizes(const Bytes& picture, size_t height, size_t width) {
  return {{"mFileSize", Number(picture.size())},
          {"mHeight", Number(height)},
          {"mWidth", Number(width)},
          {"mOrnamailPop", "J0"}};
}

// The fields in the order in which they are written: the value before, the value from the full
// picture, and an array that is too short for it.
struct Field {
  std::string name, old, full, tooShort;
};
const Field kFields[] = {
    {"mFileSize", "J-7", Number(kFullPng.size()), ""},
    {"mHeight", "J-7", "J16", ""},
    {"mWidth", "J-7", "J32", ""},
    {"mOrnamailPop", "J-7", "J0", ""},
    {"mTags", "Sold", "Scolor,motion", ""},
    {"mTagsName", "Aold*100", "Acolor|motion|color|*97", "Aold*99"},
    {"mTagsElement", "Aold*101", "Ayellow||red|*97|old", "Aold*99"},
    {"mCategory", "Sold", "Sface", ""},
    {"mType", "Sold", "S", ""},
    {"mName", "Aold*10", "Asmile|wink|old*8", "Aold"},
    {"mNote", "Aold*3", "Ahappy|*1|old", "Aold"},
    {"mPart", "B9*3", "B1|0|9", "B9"},
};
Values First(size_t n, std::string Field::*value) {
  Values values;
  for (size_t i = 0; i < n; ++i) values[kFields[i].name] = kFields[i].*value;
  return values;
}
const Values kOld = First(12, &Field::old), kFull = First(12, &Field::full);

class JniPicture : public testing::Test {
 protected:
  // The empty text of {} is a null reference.
  jstring Text(std::string_view text) {
    return vm_.Argument<jstring>(text.data() == nullptr ? nullptr : vm_.String(text));
  }

  // The status and the results, which were "old".
  std::string LookUp(std::string_view path, std::string_view name, size_t entries = 10) {
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

// A file and its bytes (no bytes: the file is left alone), the values of its object, the result,
// and the values that change besides the sizes.
using Row = std::tuple<std::string, Bytes, Values, int, Values>;

class JniRead : public JniPicture {
 protected:
  // There is one path more than objects, and one result more, which is 5 and stays 5.
  int Read(const std::vector<Row>& rows) {
    *paths_ = *objects_ = {};
    codes_->bytes.assign(rows.size(), 0);
    codes_->bytes.push_back(5);
    for (const auto& [file, bytes, before, code, changes] : rows) {
      const std::string path = bytes.empty() ? folder_.Path(file) : folder_.Write(file, bytes);
      paths_->elements.push_back(vm_.String(path));
      objects_->elements.push_back(vm_.Object(before));
    }
    paths_->elements.push_back(paths_->elements[0]);
    const auto paths = vm_.Argument<jobjectArray>(paths_);
    const auto objects = vm_.Argument<jobjectArray>(objects_);
    const auto codes = vm_.Argument<jbyteArray>(codes_);
    if (fingerprints_ == nullptr)
      return Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(vm_.Env(), nullptr, paths, objects,
                                                               codes);
    return Java_lumigram_jni_LumigramFiles_readPictures(
        vm_.Env(), nullptr, paths, objects, vm_.Argument<jlongArray>(fingerprints_), codes);
  }

  void Check(const std::vector<Row>& rows) {
    EXPECT_EQ(Read(rows), 0);
    EXPECT_EQ(codes_->bytes.back(), 5);
    for (size_t i = 0; i < rows.size(); ++i) {
      const auto& [file, bytes, before, code, changes] = rows[i];
      EXPECT_EQ(codes_->bytes[i], code) << file;
      Values expected = code == 0 ? Sizes(ReadWhole(folder_.Path(file)), 16, 32) : Values();
      for (const Values& values : {changes, before}) expected.insert(values.begin(), values.end());
      EXPECT_TRUE(vm_.Holds(objects_->elements[i], expected)) << file;
    }
  }

  JavaObject *paths_ = vm_.Make(), *objects_ = vm_.Make(), *codes_ = vm_.Make();
  JavaObject* fingerprints_ = nullptr;  // null: the method that waits
};

TEST_F(JniRead, ReadsABatch) {
  const std::string tooLong(25, 'x'), longest(256, 'u');
  const Bytes cut = FirstOf(kFullPng, kFullPng.size() - 9), wide = PngStart(961, 5);
  Bytes largest = kFullPng;
  largest.resize(2097152);
  const Bytes small = Png(Label("1") + Label("2") + Label("3") + Tag("c", ""));
  const Values smallValues = {{"mTags", "Sc"},
                              {"mTagsName", "Ac|*99"},
                              {"mName", "A1|2|3|old*7"},
                              {"mNote", "A*3"},
                              {"mPart", "B0*3"}};
  const Bytes refused = Png(Label("a") + Label(tooLong) + "<type>t</type>" + Tag("a", "long"));
  const Bytes badTag = Png("<category>\xFF</category>" + Tag("c", "3") + Tag(tooLong, ""));
  const Values refusedValues = {
      {"mTags", "Sa"}, {"mTagsName", "Aa|*99"}, {"mTagsElement", "Along|*99|old"}, {"mType", "St"}};
  // One file is filled just before its fifth and last measurement; the next one stays empty.
  folder_.Write("empty.png", {});
  folder_.Write("late.png", {});
  int pauses = 0;
  onPause = [&] {
    if (++pauses == 4) folder_.Write("late.png", kBarePng);
  };
  Check({
      {"full.png", kFullPng, kOld, 0, kFull},
      {"untagged.png", Png("<type>" + longest + "</type>"), kOld, 0, {{"mType", "S" + longest}}},
      {"refused.png", refused, kOld, 0, refusedValues},
      {"small.png", small, kOld, 0, smallValues},
      {"photo.bmp", kFullPng, kOld, -21, {}},
      {"missing.png", {}, kOld, -20, {}},
      {"cut.png", cut, kOld, -30, Sizes(cut, 16, 32)},
      {"wide.png", wide, kOld, -31, Sizes(wide, 5, 961)},
      {"largest.png", largest, kOld, 0, kFull},
      {"larger.png", largest + Bytes{0}, kOld, -99, {}},
      {"bare.png", kBarePng, First(4, &Field::old), 0, {}},  // needs only four fields
      {"badtag.png", badTag, kOld, 0, {{"mCategory", "S\xEF\xBF\xBD"}}},
      {"noname.png", Png(Tag("", "x")), kOld, 0, {{"mTagsElement", "Ax|*99|old"}}},
      {"late.png", {}, kOld, 0, {}},
      {"empty.png", {}, kOld, -99, {}},
  });
  onPause = nullptr;
  EXPECT_EQ(pauses, 9);
}

// If a field is missing, or an array is too short, the fields before it are written.
TEST_F(JniRead, StopsAtTheFirstFieldThatCannotBeWritten) {
  for (size_t i = 0; i < std::size(kFields); ++i) {
    const auto& [name, old, full, tooShort] = kFields[i];
    const Values written = First(i, &Field::full);
    Values before = kOld;
    before.erase(name);
    Check({{"full.png", kFullPng, before, -99, written}});
    for (const std::string& array : {tooShort, old.substr(0, 1) + "~"}) {
      before[name] = array;
      if (!tooShort.empty()) Check({{"full.png", kFullPng, before, -99, written}});
    }
  }
}

TEST_F(JniRead, AFailureOfTheMachineStaysWithItsFile) {
  const Row row = {"full.png", kFullPng, kOld, 0, {}};
  // Without the bulk copy, each slot is stored separately.
  const std::set<std::string> harmless = {"", "FindClass", "NewObjectArray", "GetStaticMethodID",
                                          "CallStaticVoidMethodA"};
  int status, lookUps = 0;
  const auto read = [&] { status = Read({row, row}); };
  vm_.FailEach(read, [&](const std::string& failed) {
    lookUps += failed == "GetFieldID";
    EXPECT_EQ(status + codes_->bytes[0] + codes_->bytes[1], harmless.contains(failed) ? 0 : -99);
    for (size_t i : {0u, 1u}) {
      EXPECT_EQ(vm_.Holds(objects_->elements[i], kFull), status == 0 && codes_->bytes[i] == 0);
    }
  });
  EXPECT_EQ(lookUps, 12) << "each field is looked up once for two objects of one class";
  bool happened = true;
  for (int nth = 0; happened; ++nth) {
    const FailCalls fail(kAllCalls, nth / 2, EIO,
                         nth % 2 == 0 ? FailCalls::kOnce : FailCalls::kFromThenOn);
    status = Read({row});
    happened = fail.Happened();
    EXPECT_TRUE(nth > 1 || status == -99) << "no memory";
    if (status != 0) continue;
    EXPECT_TRUE((std::set<int>{0, -20, -30, -99}.contains(codes_->bytes[0]))) << nth;
    EXPECT_EQ(vm_.Holds(objects_->elements[0], kFull), codes_->bytes[0] == 0) << nth;
  }
}

// A batch that never waits: everything but a good picture is answered at once.
TEST_F(JniRead, ReadsFilesAtOnce) {
  const std::string fifo = folder_.Path("fifo.png");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  mkdir(folder_.Path("folder.png").c_str(), 0700);
  const Bytes hidden = Png(Tag("a", "") + Tag("b", "2"));
  const Values hiddenValues = {
      {"mTags", "Sa,b"}, {"mTagsName", "Aa|b|*98"}, {"mTagsElement", "A|2|*98|old"}};
  folder_.Write("empty.png", {});
  const Bytes large = kFullPng + Bytes(2097153 - kFullPng.size());
  onPause = [] { ADD_FAILURE() << "waits"; };
  fingerprints_ = vm_.Make({.longs = std::vector<jlong>(15, -1)});
  Check({{"full.png", kFullPng, kOld, 0, kFull},
         {"hidden.png", hidden, kOld, 0, hiddenValues},
         {"empty.png", {}, kOld, -99, {}},
         {"large.png", large, kOld, -99, {}},
         {"fifo.png", {}, kOld, -99, {}},
         {"folder.png", {}, kOld, -99, {}},
         {"full2.png", kFullPng, kOld, 0, kFull},
         {"short.png", kFullPng, kOld, -99, Sizes(kFullPng, 16, 32)}});
  onPause = nullptr;
  const std::vector<jlong>& numbers = fingerprints_->longs;
  EXPECT_NE(numbers[0], numbers[2]) << "another document";
  EXPECT_TRUE(std::equal(&numbers[0], &numbers[2], &numbers[12])) << "the same picture";
  EXPECT_EQ(numbers[14], -1) << "there is no room for both numbers";
}

TEST(JavaText, AnyBytesBecomeModifiedUtf8) {
  // A "?" means U+FFFD.
  const std::string plain =
      "\x01\x7F\xC0\x80\xC2\x80\xDF\xBF\xE0\xA0\x80\xE1\x80\x80\xEF\xBF\xBF\xED\xA0\xBD\xED\xB8"
      "\x80";
  const std::pair<std::string, std::string> rows[] = {
      {plain, plain},
      {plain + "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\xF0\x90\x8F\xBF\xF1\x96\xA7\x98",
       plain + "\xED\xA0\x80\xED\xB0\x80\xED\xAF\xBF\xED\xBF\xBF" +
           "\xED\xA0\x80\xED\xBF\xBF\xED\xA4\x9A\xED\xB7\x98"},
      {"\xF0\x8F\xBF\xBF.\xF4\x90\x80\x80.\xF5\x80\x80\x80", "????.????.????"},
      {"\xC0\x81\xC1\xBF\xE0\x9F\xBFy\xE3\x81z\x80\xDF.", "???????y??z??."},
      {"\xF0\x9F\x98", "???"},
      {"a\xE3\x81", "a??"},
      {"a\xDF", "a?"},
      {std::string(kMaxJavaTextField - 1, '\xFF'), std::string(kMaxJavaTextField - 1, '?')},
  };
  FakeJni vm;
  for (const auto& [text, expected] : rows) {
    char field[kMaxJavaTextField] = {};
    std::copy(text.begin(), text.end(), field);
    std::string spelled;
    for (char c : expected) spelled += c == '?' ? "\xEF\xBF\xBD" : std::string(1, c);
    const jstring string = NewJavaString(vm.Env(), field);
    EXPECT_EQ(vm.At(string)->text, spelled);
    vm.Env()->DeleteLocalRef(string);
  }
}

const std::string kTwoTags = "<emoji><tags name=\"a\">\xFF</tags><tags name=\"a\">2</tags>";

TEST_F(JniPicture, LooksUpATagGroup) {
  const std::string path = folder_.Write("a.png", PngStart() + PngDocument(kTwoTags) + kPngEnd);
  const std::string found = "0,\xEF\xBF\xBD,2,,,,,,,,";
  EXPECT_EQ(LookUp(path, "a", 11), found + ",old");
  EXPECT_EQ(LookUp(path, "a", 1), "-99,old");
  EXPECT_EQ(LookUp({}, "a", 0), "-10") << "null comes first";
  EXPECT_EQ(LookUp(path, {}, 0), "-10") << "null comes first";
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
  EXPECT_EQ(Blob(png, {}, "x1") + Blob(png, "EMJ", {}), "nullnull");
  std::string found;
  vm_.FailEach(
      [&] { found = Blob(png, "EMJ", "x"); },
      [&](const std::string& failed) { EXPECT_EQ(found, failed.empty() ? bytes : "null"); });
}

constexpr char kLabels[] = "mApplicationExtensionLabelName";
constexpr char kUris[] = "mApplicationExtensionBinaryDataUri";

class JniWrite : public JniPicture {
 protected:
  int Write(const Values& object, std::string_view path) {
    return Java_lumigram_jni_LumigramJni_setLumigramAttrInfo(
        vm_.Env(), nullptr, Text(path), vm_.Argument<jobject>(vm_.Object(object)));
  }

  const std::string blob_ = folder_.Write("wink.dat", test::Text("blob"));
  const std::string tune_ = folder_.Write("tune", test::Text("la"));
  const Bytes kept_ = PngBlob("EMJ00000000", "b.dat", test::Text("b"));
  const Bytes old_ = PngStart() + kept_ + kPngImage + kPngEnd;
  const std::string path_ = folder_.Write("a.png", old_);
  // The third tag keeps a blob of the picture; the second and fourth add new ones.
  const Values full_ = {{"mName", "Asmile||wink|*7"},
                        {"mNote", "Ahappy|dropped|*8"},
                        {"mPart", "B1|2|-1"},
                        {"mCategory", "Sface"},
                        {"mType", "S~"},
                        {"mTags", "Acolor|motion|sound|tune|-|unseen"},
                        {"mTagsElement", "Ayellow|ignored|file://THIS/a/b.dat|ignored"},
                        {kLabels, "A-|EMJ|-|*1"},
                        {kUris, "A-|" + blob_ + "|-|" + tune_}};
};

TEST_F(JniWrite, WritesEveryField) {
  EXPECT_EQ(Write(full_, path_), 0);
  const Bytes document = PngDocument(
      "<emoji><label><name>smile</name><note>happy</note><part>名詞</part></label>"
      "<label><name>wink</name></label><category>face</category><tags name=\"color\">yellow</tags>"
      "<tags name=\"motion\">file://THIS/wink.dat</tags>"
      "<tags name=\"sound\">file://THIS/a/b.dat</tags>"
      "<tags name=\"tune\">file://THIS/tune</tags></emoji>");
  const Bytes added = PngBlob("EMJ" + std::string(8, '\0'), "wink.dat", test::Text("blob")) +
                      PngBlob(std::string(11, '\0'), "tune", test::Text("la"));
  EXPECT_EQ(ReadWhole(path_), PngStart() + kept_ + document + added + kPngImage + kPngEnd);
  Values none = full_;
  none["mTags"] = "A~";
  none["mCategory"] = "S~";
  none["mName"] = "A*10";
  EXPECT_EQ(Write(none, path_), 0);
  EXPECT_EQ(ReadWhole(path_), PngStart() + PngDocument("<emoji></emoji>") + kPngImage + kPngEnd);
  // Entries after the hundredth tag are not read.
  none["mTags"] = "Ac*101";
  none["mTagsElement"] = "Ax*100";
  EXPECT_EQ(Write(none, path_), 0);
}

TEST_F(JniWrite, RefusesWhatIsNotComplete) {
  // A field, its value (empty: the class lacks the field), and the status.
  std::vector<std::tuple<std::string, std::string, int>> rows = {
      {"mName", "A*9", -99},
      {"mName", "A1234567890123456789012345|*9", -41},
      {"mNote", "A*9", -99},
      {"mTagsElement", "Ayellow|-|x", -99},
      {"mTagsElement", "Afile://THIS/wink.dat|ignored|x", -50},
      // The name is taken from the whole text, which is cut to fit its field.
      {"mTagsElement", "Afile://THIS/" + std::string(1100, 'x') + "/wink.dat|ignored|x", -50},
      {kLabels, "AEMJ|EMJ", -99},
      {kLabels, "A", -99},
      {kUris, "A-", -99},
      {kUris, "A-|wink.dat", -99},
      {kUris, "A-|/missing/wink.dat|-|" + tune_, -41},
      {kUris, "A-|/|-|" + tune_, -41},  // two empty names are not a duplicate
  };
  for (const auto& [field, value] : full_) {
    rows.push_back({field, "", -99});
    if (value[0] != 'S' && field != "mTags") rows.push_back({field, value.substr(0, 1) + "~", -99});
  }
  for (const auto& [field, value, status] : rows) {
    Values object = full_;
    object[field] = value;
    if (value.empty()) object.erase(field);
    EXPECT_EQ(Write(object, path_), status) << field << " " << value;
    EXPECT_EQ(ReadWhole(path_), old_) << field << " " << value;
  }
  EXPECT_EQ(Write(full_, folder_.Path("a.bmp")), -21);
  EXPECT_EQ(Write(full_, folder_.Path("missing.png")), -20);
  EXPECT_EQ(Write({}, folder_.Path("a.bmp")), -99);
  EXPECT_EQ(Write({}, {}), -10);
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

using Details = std::vector<jlong>;

class JniRewrite : public JniWrite {
 protected:
  JniRewrite() { folder_.Write("a.png", seen_); }

  int Rewrite(const std::string& path, const Details* expected, bool replacesUnread,
              size_t room = 11) {
    details_->longs.assign(room, -1);
    JavaObject* seen = expected == nullptr ? nullptr : vm_.Make({.longs = *expected});
    return Java_lumigram_jni_LumigramFiles_writePicture(
        vm_.Env(), nullptr, Text(path), vm_.Argument<jobject>(vm_.Object(object_)),
        vm_.Argument<jobjectArray>(blobs_), vm_.Argument<jlongArray>(seen), replacesUnread,
        vm_.Argument<jlongArray>(details_));
  }

  Details Fingerprint(const std::string& path) {
    JavaObject* fingerprint = vm_.Make({.longs = {0, 0}});
    JavaObject* code = vm_.Make({.bytes = {9}});
    Java_lumigram_jni_LumigramFiles_readPictures(
        vm_.Env(), nullptr, vm_.Argument<jobjectArray>(vm_.Make({.elements = {vm_.String(path)}})),
        vm_.Argument<jobjectArray>(vm_.Make({.elements = {vm_.Object(kOld)}})),
        vm_.Argument<jlongArray>(fingerprint), vm_.Argument<jbyteArray>(code));
    EXPECT_EQ(code->bytes[0], 0);
    return fingerprint->longs;
  }

  const Bytes seen_ = PngStart() + PngDocument("<emoji>" + Tag("t", "file://THIS/b") + "</emoji>") +
                      kept_ + kPngImage + kPngEnd;
  JavaObject* Array(const Bytes& bytes) {
    return vm_.Make({.bytes = {bytes.begin(), bytes.end()}});
  }

  int RewriteBytes(JavaObject* picture, int kind) {
    details_->longs.assign(11, -1);
    return Java_lumigram_jni_LumigramBytes_writePicture(
        vm_.Env(), nullptr, vm_.Argument<jbyteArray>(picture), kind,
        vm_.Argument<jobject>(vm_.Object(object_)), vm_.Argument<jobjectArray>(blobs_), nullptr,
        true, vm_.Argument<jlongArray>(details_), vm_.Argument<jobjectArray>(written_));
  }

  // New blobs of the second and fourth tag.
  JavaObject* blobs_ = vm_.Make(
      {.elements = {nullptr, Array(test::Text("blob")), nullptr, Array(test::Text("la"))}});
  JavaObject* written_ = vm_.Make({.elements = {nullptr}});
  Values object_ = full_;
  JavaObject* details_ = vm_.Make();
};

TEST_F(JniRewrite, ComparesAndReportsTheNewFingerprint) {
  const Details old = Fingerprint(path_), other = {old[0], old[1] + 1}, cut = {old[0]};
  EXPECT_EQ(Rewrite(path_, &other, true), 5);
  EXPECT_EQ(Rewrite(path_, &cut, true), -99) << "half a fingerprint";
  EXPECT_EQ(Rewrite(path_, &old, true, 10), -99) << "no room for the details";
  EXPECT_EQ(ReadWhole(path_), seen_);
  EXPECT_EQ(Rewrite(path_, &old, false), 0);
  EXPECT_EQ(Fingerprint(path_), Details(&details_->longs[0], &details_->longs[2]));
  EXPECT_EQ(details_->longs[2], std::ssize(ReadWhole(path_)));
  EXPECT_EQ(Rewrite(path_, &old, true), 5);
  EXPECT_EQ(Rewrite(path_, nullptr, true), 0);
  EXPECT_EQ(Rewrite(folder_.Path("missing.png"), nullptr, true), -20);
  EXPECT_EQ(details_->longs[0], ENOENT);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("missing.png")));
  EXPECT_EQ(Rewrite(folder_.Path("a.bmp"), nullptr, true), -21);
  const FailCalls fail("fsync", 0, EDQUOT);
  EXPECT_EQ(Rewrite(path_, nullptr, true), 7);
  EXPECT_EQ(details_->longs[0], EDQUOT);
}

TEST_F(JniRewrite, CountsWhatWouldBeLost) {
  const std::string labels =
      Label("") + Repeat(Label("a"), 7) + Repeat(Label("b", "<part>x</part>"), 5);
  const std::string tags = Repeat(Tag(std::string(25, 'x'), ""), 4) + Repeat(Tag("", "x"), 5) +
                           Repeat("x<type></type>", 7) + Repeat(Tag("a", "<type>"), 8);
  Bytes picture = PngStart() + PngDocument("<emoji>" + labels + tags + "</emoji>");
  for (int i = 0; i < 9; ++i) picture += PngDocument("<emoji></emoji>");
  for (int i = 0; i < 10; ++i) picture += PngBlob("EMJ00000000", "x", {});
  const std::string path = folder_.Write("lost.png", picture + kPngImage + kPngEnd + Bytes(11));
  EXPECT_EQ(Rewrite(path, nullptr, false), 4);
  EXPECT_EQ(details_->longs, Details({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
  EXPECT_EQ(Rewrite(path, nullptr, true), 3) << "the third tag keeps a blob that is not there";
  const Bytes wide = PngStart(961) + kPngImage + kPngEnd;
  EXPECT_EQ(Rewrite(folder_.Write("wide.png", wide), nullptr, false), -31);
}

// A reference to nothing may stay, and may not be added.
TEST_F(JniRewrite, FindsTheBlobsOfNewReferences) {
  blobs_ = nullptr;
  object_["mTags"] = "At|u";
  object_["mTagsElement"] = "Afile://THIS/b|file://THIS/bb";
  object_[kLabels] = object_[kUris] = "A-*2";
  EXPECT_EQ(Rewrite(path_, nullptr, true), 3);
  EXPECT_EQ(details_->longs[0], 1);
  folder_.Write("a.png", PngStart() + PngDocument("<emoji>" + Tag("t", "file://THIS/bb")) + kept_ +
                             kPngImage + kPngEnd);
  EXPECT_EQ(Rewrite(path_, nullptr, true), 0);
  const std::string jpeg = folder_.Write("a.jpg", kJpegStart + JpegFrame() + kJpegScan + kJpegEnd);
  EXPECT_EQ(Rewrite(jpeg, nullptr, true), 3);
}

TEST_F(JniRewrite, AFailureOfTheMachineLeavesThePictureAlone) {
  int status;
  const Details old = Fingerprint(path_);
  const auto write = [&] {
    folder_.Write("a.png", seen_);
    status = Rewrite(path_, &old, false);
  };
  vm_.FailEach(write, [&](const std::string& failed) {
    const bool isWritten = failed.empty() || failed == "SetLongArrayRegion";
    EXPECT_EQ(status, isWritten ? 0 : -99);
    EXPECT_EQ(ReadWhole(path_) == seen_, !isWritten);
  });
  bool happened = true;
  for (int nth = 0; happened; ++nth) {
    folder_.Write("a.png", seen_);
    {
      const FailCalls fail(kAllCalls, nth / 2, EIO,
                           nth % 2 == 0 ? FailCalls::kOnce : FailCalls::kFromThenOn);
      status = Rewrite(path_, &old, false);
      happened = fail.Happened();
    }
    EXPECT_TRUE((std::set<int>{0, -20, -30, -99, 7}.contains(status))) << nth << ": " << status;
    EXPECT_EQ(ReadWhole(path_) == seen_, status != 0) << nth;
  }
}

TEST_F(JniRewrite, BytesAreRewrittenLikeFiles) {
  EXPECT_EQ(Write(full_, path_), 0);
  const Bytes wanted = ReadWhole(path_);
  folder_.Write("a.png", seen_);
  EXPECT_EQ(Rewrite(path_, nullptr, true), 0);
  EXPECT_EQ(ReadWhole(path_), wanted);
  const Details details = details_->longs;
  JavaObject* const picture = Array(seen_);
  int status;
  const auto rewrite = [&] {
    written_->elements[0] = nullptr;
    status = RewriteBytes(picture, 3);
  };
  vm_.FailEach(rewrite, [&](const std::string& failed) {
    const bool isDone = failed.empty() || failed == "SetLongArrayRegion";
    EXPECT_EQ(status, isDone ? 0 : -99);
    EXPECT_TRUE(written_->elements[0] == nullptr
                    ? !isDone
                    : written_->elements[0]->bytes == Array(wanted)->bytes);
    EXPECT_EQ(details_->longs == details, failed.empty());
  });
  EXPECT_EQ(RewriteBytes(picture, 0), -21);
  EXPECT_EQ(RewriteBytes(Array({}), 3), -99);
  blobs_->elements[1] = Array(Bytes(2097149));
  EXPECT_EQ(RewriteBytes(picture, 3), -42);
  blobs_->elements[1] = nullptr;
  EXPECT_EQ(RewriteBytes(picture, 3), -99) << "no file is opened";
}

TEST_F(JniRewrite, BytesAreReadLikeFiles) {
  Bytes largest = seen_;
  largest.resize(2097152);
  JavaObject* const pictures =
      vm_.Make({.elements = {Array(seen_), Array(largest), Array(largest + Bytes{0}), Array({}),
                             nullptr, Array(seen_), Array(seen_)}});
  JavaObject* const objects = vm_.Make();
  for (int i = 0; i < 7; ++i) objects->elements.push_back(vm_.Object(kOld));
  JavaObject* const codes = vm_.Make({.bytes = std::vector<jbyte>(7, 5)});
  JavaObject* const numbers = vm_.Make({.longs = std::vector<jlong>(14)});
  int status;
  const auto read = [&] {
    status = Java_lumigram_jni_LumigramBytes_readPictures(
        vm_.Env(), nullptr, vm_.Argument<jobjectArray>(pictures),
        vm_.Argument<jbyteArray>(vm_.Make({.bytes = {3, 3, 3, 3, 3, 4}})),
        vm_.Argument<jobjectArray>(objects), vm_.Argument<jlongArray>(numbers),
        vm_.Argument<jbyteArray>(codes));
  };
  vm_.FailEach(read,
               [&](const std::string& failed) { EXPECT_TRUE(status == 0 || !failed.empty()); });
  EXPECT_EQ(codes->bytes, (std::vector<jbyte>{0, 0, -99, -99, -99, -21, -21}));
  EXPECT_EQ(Details(&numbers->longs[0], &numbers->longs[2]), Fingerprint(path_));
  EXPECT_EQ(objects->elements[1]->fields["mFileSize"]->text, "2097152");
  EXPECT_EQ(objects->elements[0]->fields["mTagsElement"]->elements[0]->text, "file://THIS/b");
}

// The texts of a list, with a "|" after each.
std::string Joined(FakeJni& vm, jobjectArray array) {
  std::string texts;
  if (array == nullptr) return "null";
  for (const JavaObject* text : vm.At(array)->elements) texts += text->text + "|";
  vm.Env()->DeleteLocalRef(array);
  return texts;
}

TEST_F(JniRewrite, BlobsOfBytesAndFiles) {
  JavaObject* const code = vm_.Make({.longs = {9}});
  JavaObject* const picture = Array(seen_);
  std::string list, blob;
  const auto status = [&] { return vm_.Argument<jintArray>(code); };
  for (bool isFile : {false, true}) {
    const auto run = [&] {
      const auto bytes = vm_.Argument<jbyteArray>(picture);
      list = Joined(vm_, isFile ? Java_lumigram_jni_LumigramFiles_listBlobs(vm_.Env(), nullptr,
                                                                            Text(path_), status())
                                : Java_lumigram_jni_LumigramBytes_listBlobs(vm_.Env(), nullptr,
                                                                            bytes, 3, status()));
    };
    vm_.FailEach(run, [&](const std::string& failed) {
      EXPECT_EQ(list,
                failed.empty() || failed == "SetIntArrayRegion" ? "EMJ00000000|b.dat|1|" : "null");
      EXPECT_TRUE(failed.empty() == (code->longs[0] == 0) || failed == "SetIntArrayRegion");
    });
    const auto find = [&](std::string_view name) {
      const auto bytes = vm_.Argument<jbyteArray>(picture);
      const auto found =
          isFile ? Java_lumigram_jni_LumigramFiles_readBlob(vm_.Env(), nullptr, Text(path_),
                                                            Text("EMJ"), Text(name), status())
                 : Java_lumigram_jni_LumigramBytes_readBlob(vm_.Env(), nullptr, bytes, 3,
                                                            Text("EMJ"), Text(name), status());
      blob = found == nullptr ? "null" : std::string(1, char(vm_.At(found)->bytes.at(0)));
      if (found != nullptr) vm_.Env()->DeleteLocalRef(found);
    };
    vm_.FailEach([&] { find("b"); },
                 [&](const std::string& failed) {
                   EXPECT_EQ(blob, failed.empty() || failed == "SetIntArrayRegion" ? "b" : "null");
                 });
    find("c");
    EXPECT_EQ(blob + std::to_string(code->longs[0]), "null-2");
  }
}

TEST_F(JniPicture, FindsWhatIsWrongWithAFile) {
  JavaObject* words = vm_.Make({.elements = {nullptr}});
  const auto find = [&](const std::string& path, int error) {
    return Java_lumigram_jni_LumigramFiles_findObstacle(vm_.Env(), nullptr, Text(path), true, error,
                                                        vm_.Argument<jobjectArray>(words));
  };
  const std::string gif = folder_.Write("a.gif", kBarePng), png = folder_.Write("a.png", kBarePng);
  vm_.FailEach([&] { EXPECT_TRUE(find(gif, EIO) % 7 == 0); }, [&](const std::string&) {});
  EXPECT_EQ(words->elements[0]->text, "holds a PNG picture; rename it to .png");
  EXPECT_EQ(find(png, EDQUOT), 0);
  EXPECT_EQ(words->elements[0]->text, "Disk quota exceeded");
  EXPECT_EQ(find(png, 0), 0);
  EXPECT_EQ(words->elements[0]->text, "");
}

}  // namespace
}  // namespace lumigram::test
