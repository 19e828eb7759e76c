// The batch read, from files to the fields of Java objects.
#include <gtest/gtest.h>

#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "tests/support/fail_calls.h"
#include "tests/support/fake_jni.h"
#include "tests/support/gif_builder.h"
#include "tests/support/png_builder.h"

// What happens, in no time, when the product pauses.
static std::function<void()> onPause;

extern "C" unsigned sleep(unsigned) {
  if (onPause != nullptr) onPause();
  return 0;
}

namespace lumigram::test {
namespace {

using Values = std::map<std::string, std::string>;  // of an object's fields, in words

std::string Tags(std::string_view name, std::string_view content) {
  return "<tags name=\"" + std::string(name) + "\">" + std::string(content) + "</tags>";
}
std::string Label(std::string_view name, std::string_view more = "") {
  return "<label><name>" + std::string(name) + "</name>" + std::string(more) + "</label>";
}
Bytes Png(const std::string& inRoot) {
  return PngStart() + PngDocument("<emoji>" + inRoot + "</emoji>") + kPngImage + kPngEnd;
}

const Bytes kBarePng = PngStart() + kPngImage + kPngEnd;
const Bytes kFullPng =
    Png(Label("smile", "<note>happy</note><part>名詞</part>") +
        Label("wink", "<part>unknown</part>") + Tags("color", "yellow") +
        "<category>face</category><type></type>" + Tags("motion", "") + Tags("color", "red"));

// The fields in the order in which they are written, and what the full picture puts there.
struct Field {
  std::string name, signature, value;
};
constexpr char kString[] = "Ljava/lang/String;";
constexpr char kStrings[] = "[Ljava/lang/String;";
const Field kFields[] = {
    {"mFileSize", "J", std::to_string(kFullPng.size())},
    {"mHeight", "J", "16"},
    {"mWidth", "J", "32"},
    {"mOrnamailPop", "J", "0"},
    {"mTags", kString, "color,motion"},
    {"mTagsName", kStrings, "color|motion|color|*97"},
    {"mTagsElement", kStrings, "yellow||red|*97"},
    {"mCategory", kString, "face"},
    {"mType", kString, ""},
    {"mName", kStrings, "smile|wink|old*98"},
    {"mNote", kStrings, "happy||old*98"},
    {"mPart", "[B", "1|0|9*8"},
};

// "a|b*3": an array's elements, equal neighbours counted.
std::string InWords(const JavaObject* object) {
  if (object == nullptr) return "null";
  std::vector<std::string> words;
  for (const JavaObject* element : object->elements) words.push_back(element->text);
  for (jbyte number : object->bytes) words.push_back(std::to_string(number));
  std::string all = object->text;
  for (size_t i = 0, n; i < words.size(); i += n) {
    for (n = 1; i + n < words.size() && words[i + n] == words[i];) ++n;
    all.append(i > 0 ? "|" : "").append(words[i]);
    if (n > 1) all.append("*").append(std::to_string(n));
  }
  return all;
}

Values ValuesOf(const JavaObject* object) {
  Values values;
  for (const auto& [name, number] : object->numbers) values[name] = std::to_string(number);
  for (const auto& [name, value] : object->objects) values[name] = InWords(value);
  return values;
}

// What the object holds when the first n fields have been written for the full picture.
Values WithFirst(size_t n, const JavaObject* object) {
  Values values = ValuesOf(object);
  for (size_t i = 0; i < n; ++i) values[kFields[i].name] = kFields[i].value;
  return values;
}

class JniRead : public testing::Test {
 protected:
  JavaObject* Class(size_t fieldCount = 12) {
    JavaObject* type = vm_.Make();
    for (size_t i = 0; i < fieldCount; ++i)
      type->signatures[kFields[i].name] = kFields[i].signature;
    return type;
  }
  JavaObject* Old() { return vm_.MakeOld(type_); }

  // The call's status, and the results, which were 5. An empty name is a null path.
  std::vector<int> Read(const std::vector<std::string>& names, std::vector<JavaObject*> objects,
                        size_t results) {
    JavaObject* paths = vm_.Make();
    for (const std::string& name : names) {
      paths->elements.push_back(name.empty() ? nullptr : vm_.String(folder_.Path(name)));
    }
    JavaObject* codes = vm_.Make({.bytes = std::vector<jbyte>(results, 5)});
    std::vector<int> all = {Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(
        vm_.Env(), nullptr, vm_.Argument<jobjectArray>(paths),
        vm_.Argument<jobjectArray>(vm_.Make({.elements = objects})),
        vm_.Argument<jbyteArray>(codes))};
    all.insert(all.end(), codes->bytes.begin(), codes->bytes.end());
    return all;
  }

  TempFolder folder_;
  FakeJni vm_;
  JavaObject* type_ = Class();
};

TEST_F(JniRead, GoesOnThroughABatchOfGoodAndBad) {
  const std::string tooLong(25, 'x');
  const Bytes small = Png(Label("1") + Label("2") + Tags("c", ""));
  const Values smallValues = {{"mTags", "c"},
                              {"mTagsName", "c|*99"},
                              {"mName", "1|2|old*98"},
                              {"mNote", "*2|old*98"},
                              {"mPart", "0*2|9*8"}};
  const Bytes refused = Png(Label("a") + Label(tooLong) + "<type>t</type>" + Tags("a", "long"));
  const Bytes badTag = Png("<category>c</category>" + Tags("c", "3") + Tags(tooLong, ""));
  Bytes largest = kBarePng;
  largest.resize(kLumigramMaxPictureBytes);
  struct Row {
    std::string file;
    Bytes bytes;
    int code;
    Values changes;
  };
  const Row rows[] = {
      {"missing.gif", {}, -20, {}},
      {"full.png", kFullPng, 0, WithFirst(12, Old())},
      {"small.png", small, 0, smallValues},
      {"other.bmp", kFullPng, -21, {}},
      {"refused.png",
       refused,
       0,
       {{"mTags", "a"}, {"mTagsName", "a|*99"}, {"mTagsElement", "long|*99"}, {"mType", "t"}}},
      {"again.png", small, 0, smallValues},
      {"bare.png", kBarePng, 0, {}},
      {"", {}, -99, {}},
      {"wide.png", PngStart(961, 16) + kPngEnd, -31, {{"mWidth", "961"}}},
      {"cut.png", FirstOf(kFullPng, 40), -30, {}},
      {"pop.gif", GifScreen(32, 16) + kGifPopMarker + kGifEnd, 0, {{"mOrnamailPop", "1"}}},
      {"badtag.png", badTag, 0, {{"mCategory", "c"}}},
      {"noname.png", Png(Tags("", "x")), 0, {{"mTagsElement", "x|*99"}}},
      {"largest.png", largest, 0, {}},
      {"toolarge.png", largest + Bytes{0}, -99, {}},
  };
  // A picture without metadata needs four fields only.
  JavaObject* numbersOnly = Class(4);
  std::vector<std::string> files = {"full.png"};
  std::vector<JavaObject*> objects = {nullptr};
  std::vector<Values> expected;
  std::vector<int> codes = {0, -99};
  for (const Row& row : rows) {
    if (!row.bytes.empty()) folder_.Write(row.file, row.bytes);
    files.push_back(row.file);
    objects.push_back(vm_.MakeOld(row.file == "bare.png" ? numbersOnly : type_));
    codes.push_back(row.code);
    expected.push_back(row.changes);
    if (row.code == 0 || row.code / 10 == -3) {
      expected.back().insert({{"mFileSize", std::to_string(row.bytes.size())}, {"mHeight", "16"}});
      expected.back().insert({{"mWidth", "32"}, {"mOrnamailPop", "0"}});
    }
    expected.back().merge(ValuesOf(objects.back()));
  }
  // As many files as the shortest array has elements; the results behind them stay.
  files.push_back("full.png");
  codes.push_back(5);
  EXPECT_EQ(Read(files, objects, files.size()), codes);
  for (size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(ValuesOf(objects[i + 1]), expected[i]) << rows[i].file;
  }
  EXPECT_EQ(vm_.Calls("CallStaticVoidMethodA"), 7) << "unused slots are filled in bulk";
  EXPECT_EQ(vm_.Calls("GetFieldID"), 12 + 4 + 6) << "once while the class stays the same";
}

// A field that is missing, or an array that cannot take what is due: what comes before is written.
TEST_F(JniRead, StopsAtTheFirstFieldThatCannotBeWritten) {
  folder_.Write("full.png", kFullPng);
  for (size_t i = 0; i < std::size(kFields); ++i) {
    const std::string& name = kFields[i].name;
    JavaObject* lacking = Class();
    lacking->signatures.erase(name);
    std::vector<JavaObject*> objects = {vm_.MakeOld(lacking)};
    if (kFields[i].signature[0] == '[') {
      objects.insert(objects.end(), {Old(), Old()});
      objects[1]->objects[name] = nullptr;
      JavaObject& tooShort = *objects[2]->objects[name];
      tooShort.elements.resize(i == 11 ? 0 : i > 8 ? 1 : 99);
      tooShort.bytes.resize(i == 11 ? 1 : 0);
    }
    for (JavaObject* object : objects) {
      const Values expected = WithFirst(i, object);
      EXPECT_EQ(Read({"full.png"}, {object}, 1), (std::vector<int>{0, -99})) << name;
      EXPECT_EQ(ValuesOf(object), expected) << name;
    }
  }
  JavaObject* justEnough = Old();
  justEnough->objects["mName"]->elements.resize(2);
  justEnough->objects["mNote"]->elements.resize(2);
  justEnough->objects["mPart"]->bytes.resize(2);
  EXPECT_EQ(Read({"full.png"}, {justEnough}, 1), (std::vector<int>{0, 0}));
  const FailCalls noMemory("malloc", 0, ENOMEM);
  EXPECT_EQ(Read({"full.png"}, {Old()}, 1), (std::vector<int>{-99, 5}));
}

TEST_F(JniRead, AFailureOfTheMachineStaysWithItsFile) {
  folder_.Write("full.png", kFullPng);
  const Values full = WithFirst(12, Old());
  std::vector<JavaObject*> objects;
  std::vector<int> codes;
  const auto read = [&] {
    objects = {Old(), Old()};
    codes = Read({"full.png", "full.png"}, objects, 2);
  };
  vm_.FailEach(read, [&](const std::string& failed) {
    if (codes[0] != 0) {
      EXPECT_EQ(codes, (std::vector<int>{-99, 5, 5})) << failed;
      return;
    }
    // Without the bulk copy each slot is stored.
    const bool harmless = failed.empty() || failed == "FindClass" || failed == "NewObjectArray" ||
                          failed == "GetStaticMethodID" || failed == "CallStaticVoidMethodA";
    EXPECT_EQ(codes[1] + codes[2], harmless ? 0 : -99);
    for (size_t i : {0u, 1u}) EXPECT_EQ(ValuesOf(objects[i]) == full, codes[i + 1] == 0);
  });
}

TEST_F(JniRead, WaitsForAFileThatIsStillEmpty) {
  folder_.Write("a.png", {});
  int pauses = 0;
  onPause = [&] {
    if (++pauses == 9) folder_.Write("a.png", kBarePng);
  };
  JavaObject* object = Old();
  EXPECT_EQ(Read({"a.png"}, {object}, 1), (std::vector<int>{0, -99}));
  EXPECT_EQ(pauses, 5);
  EXPECT_EQ(ValuesOf(object), ValuesOf(Old()));
  EXPECT_EQ(Read({"a.png"}, {object}, 1), (std::vector<int>{0, 0}));
  EXPECT_EQ(pauses, 9);
  onPause = nullptr;
}

TEST(JavaText, AnyBytesBecomeModifiedUtf8) {
  // A "?" stands for U+FFFD.
  const std::pair<std::string, std::string> rows[] = {
      {"\x01\x7F\xC0\x80\xC2\x80\xDF\xBF", "\x01\x7F\xC0\x80\xC2\x80\xDF\xBF"},
      {"\xE0\xA0\x80\xE1\x80\x80\xEF\xBF\xBF", "\xE0\xA0\x80\xE1\x80\x80\xEF\xBF\xBF"},
      {"\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBD", "\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBD"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "\xED\xA0\x80\xED\xB0\x80\xED\xAF\xBF\xED\xBF\xBF"},
      {"a\xF0\x9F\x98\x80z", "a\xED\xA0\xBD\xED\xB8\x80z"},
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

}  // namespace
}  // namespace lumigram::test
