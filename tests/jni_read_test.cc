// The batch read, from files to the fields of Java objects.
#include <gtest/gtest.h>

#include <sstream>

#include "jni/java_text.h"
#include "jni/native_methods.h"
#include "tests/support/documents.h"
#include "tests/support/fail_calls.h"
#include "tests/support/fake_jni.h"
#include "tests/support/png_builder.h"

// What happens, in no time, when the product pauses.
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

std::string SizeOf(const Bytes& bytes) {
  return std::string("J").append(std::to_string(bytes.size()));
}

// "name:value name:value"
Values Spelled(const std::string& text) {
  Values values;
  std::istringstream words(text);
  for (std::string word; words >> word;)
    values[word.substr(0, word.find(':'))] = word.substr(word.find(':') + 1);
  return values;
}

// The fields in the order in which they are written: what is there before, what the full picture
// puts there, and an array that cannot take it.
struct Field {
  std::string name, old, full, tooShort;
};
const Field kFields[] = {
    {"mFileSize", "J-7", SizeOf(kFullPng), ""},
    {"mHeight", "J-7", "J16", ""},
    {"mWidth", "J-7", "J32", ""},
    {"mOrnamailPop", "J-7", "J0", ""},
    {"mTags", "Sold", "Scolor,motion", ""},
    {"mTagsName", "Aold*100", "Acolor|motion|color|*97", "Aold*99"},
    {"mTagsElement", "Aold*101", "Ayellow||red|*97|old", "Aold*99"},
    {"mCategory", "Sold", "Sface", ""},
    {"mType", "Sold", "S", ""},
    {"mName", "Aold*10", "Asmile|wink|old*8", "Aold"},
    {"mNote", "Aold*2", "Ahappy|*1", "Aold"},
    {"mPart", "B9*2", "B1|0", "B9"},
};
Values First(size_t n, std::string Field::*value) {
  Values values;
  for (size_t i = 0; i < n; ++i) values[kFields[i].name] = kFields[i].*value;
  return values;
}
const Values kOld = First(12, &Field::old), kFull = First(12, &Field::full);

// A file and its bytes, or none to leave it as it is; its object's values; the result; the values
// that change, besides the sizes.
using Row = std::tuple<std::string, Bytes, Values, int, Values>;

class JniRead : public testing::Test {
 protected:
  // There is one path more than objects, and one result more, which is 5 before.
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
    return Java_lumigram_jni_LumigramJni_getLumigramAttrInfo(
        vm_.Env(), nullptr, vm_.Argument<jobjectArray>(paths_),
        vm_.Argument<jobjectArray>(objects_), vm_.Argument<jbyteArray>(codes_));
  }

  void Check(const std::vector<Row>& rows) {
    EXPECT_EQ(Read(rows), 0);
    EXPECT_EQ(codes_->bytes.back(), 5);
    for (size_t i = 0; i < rows.size(); ++i) {
      const auto& [file, bytes, before, code, changes] = rows[i];
      EXPECT_EQ(codes_->bytes[i], code) << file;
      Values expected = changes;
      if (code == 0) {
        expected.merge(Spelled("mHeight:J16 mWidth:J32 mOrnamailPop:J0"));
        expected["mFileSize"] = SizeOf(ReadWhole(folder_.Path(file)));
      }
      expected.insert(before.begin(), before.end());
      EXPECT_TRUE(vm_.Holds(objects_->elements[i], expected)) << file;
    }
  }

  TempFolder folder_;
  FakeJni vm_;
  JavaObject *paths_ = vm_.Make(), *objects_ = vm_.Make(), *codes_ = vm_.Make();
};

TEST_F(JniRead, ReadsABatch) {
  const std::string tooLong(25, 'x');
  const Bytes cut = FirstOf(kFullPng, kFullPng.size() - 9), wide = PngStart(961, 5);
  const auto sizes = [](const Bytes& picture, const std::string& more) {
    return Spelled("mFileSize:" + SizeOf(picture) + " mOrnamailPop:J0 " + more);
  };
  Bytes largest = kFullPng;
  largest.resize(2097152);
  const Bytes small = Png(Label("1") + Label("2") + Tag("c", ""));
  const Values smallValues =
      Spelled("mTags:Sc mTagsName:Ac|*99 mName:A1|2|old*8 mNote:A*2 mPart:B0*2");
  const Bytes refused = Png(Label("a") + Label(tooLong) + "<type>t</type>" + Tag("a", "long"));
  const Bytes badTag = Png("<category>\xFF</category>" + Tag("c", "3") + Tag(tooLong, ""));
  const Values refusedValues =
      Spelled("mTags:Sa mTagsName:Aa|*99 mTagsElement:Along|*99|old mType:St");
  // One file stays empty for the whole time that is waited for it, the next one for less.
  folder_.Write("empty.png", {});
  folder_.Write("late.png", {});
  int pauses = 0;
  onPause = [&] {
    if (++pauses == 9) folder_.Write("late.png", kBarePng);
  };
  Check({
      {"full.png", kFullPng, kOld, 0, kFull},
      {"small.png", small, kOld, 0, smallValues},
      {"refused.png", refused, kOld, 0, refusedValues},
      {"again.png", small, kOld, 0, smallValues},
      {"photo.bmp", kFullPng, kOld, -21, {}},
      {"missing.png", {}, kOld, -20, {}},
      {"cut.png", cut, kOld, -30, sizes(cut, "mHeight:J16 mWidth:J32")},
      {"wide.png", wide, kOld, -31, sizes(wide, "mHeight:J5 mWidth:J961")},
      {"largest.png", largest, kOld, 0, kFull},
      {"larger.png", largest + Bytes{0}, kOld, -99, {}},
      {"bare.png", kBarePng, First(4, &Field::old), 0, {}},  // which needs four fields only
      {"badtag.png", badTag, kOld, 0, {{"mCategory", "S\xEF\xBF\xBD"}}},
      {"noname.png", Png(Tag("", "x")), kOld, 0, {{"mTagsElement", "Ax|*99|old"}}},
      {"empty.png", {}, kOld, -99, {}},
      {"late.png", {}, kOld, 0, {}},
  });
  onPause = nullptr;
  EXPECT_EQ(pauses, 9);
  EXPECT_EQ(vm_.Calls("CallStaticVoidMethodA"), 9) << "unused slots are filled in bulk";
  EXPECT_EQ(vm_.Calls("GetFieldID"), 12 + 4 + 6) << "once while the class stays the same";
}

// A field that is missing, or an array that cannot take what is due: what comes before is written.
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
  // Without the bulk copy each slot is stored.
  const std::set<std::string> harmless = {"", "FindClass", "NewObjectArray", "GetStaticMethodID",
                                          "CallStaticVoidMethodA"};
  int status;
  const auto read = [&] { status = Read({row, row}); };
  vm_.FailEach(read, [&](const std::string& failed) {
    EXPECT_EQ(status + codes_->bytes[0] + codes_->bytes[1], harmless.contains(failed) ? 0 : -99);
    for (size_t i : {0u, 1u}) {
      EXPECT_EQ(vm_.Holds(objects_->elements[i], kFull), status == 0 && codes_->bytes[i] == 0);
    }
  });
  bool happened = true;
  for (int nth = 0; happened; ++nth) {
    const FailCalls fail(kAllCalls, nth, EIO,
                         nth % 2 == 0 ? FailCalls::kOnce : FailCalls::kFromThenOn);
    status = Read({row});
    happened = fail.Happened();
    EXPECT_TRUE(nth > 0 || status == -99) << "no memory";
    if (status != 0) continue;
    EXPECT_TRUE((std::set<int>{0, -20, -30, -99}.contains(codes_->bytes[0]))) << nth;
    EXPECT_EQ(vm_.Holds(objects_->elements[0], kFull), codes_->bytes[0] == 0) << nth;
  }
}

TEST(JavaText, AnyBytesBecomeModifiedUtf8) {
  // A "?" stands for U+FFFD.
  const std::pair<std::string, std::string> rows[] = {
      {"\x01\x7F\xC0\x80\xC2\x80\xDF\xBF", "\x01\x7F\xC0\x80\xC2\x80\xDF\xBF"},
      {"\xE0\xA0\x80\xE1\x80\x80\xEF\xBF\xBF", "\xE0\xA0\x80\xE1\x80\x80\xEF\xBF\xBF"},
      {"\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBD", "\xED\xA0\xBD\xED\xB8\x80 \xED\xA0\xBD"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "\xED\xA0\x80\xED\xB0\x80\xED\xAF\xBF\xED\xBF\xBF"},
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
