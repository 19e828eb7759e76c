// Taking a document apart: elements, labels, parts of speech, tag groups.
#include <gtest/gtest.h>

#include <cstring>

#include "lumigram.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

// A document in a heap block of its own size, so that a sanitizer sees one byte too many.
class Document {
 public:
  explicit Document(std::string_view text) : block_(text.begin(), text.end()) {
    block_.push_back('\0');
  }
  char* get() { return block_.data(); }
  std::string Text() const { return block_.data(); }

 private:
  std::vector<char> block_;
};

std::string Repeat(std::string_view text, size_t n) {
  std::string all;
  while (n-- > 0) all += text;
  return all;
}

std::string Tag(std::string_view name, std::string_view content) {
  return "<tags name=\"" + std::string(name) + "\">" + std::string(content) + "</tags>";
}

std::string Label(std::string_view inside) { return "<label>" + std::string(inside) + "</label>"; }

TEST(Elements, CountsCharacters) {
  EXPECT_EQ(GetStrLenUtf8(nullptr), 0u);
  EXPECT_EQ(GetStrLenUtf8("ab語"), 3u);
  EXPECT_EQ(GetStrLenUtf8("\x01\t\n\x1F\x7F\x80\xBF\xF8\xFF"), 0u);
  EXPECT_EQ(GetStrLenUtf8(" ~\xC0\xF7"), 4u);
}

TEST(Elements, GetElementContent) {
  const std::string x256(256, 'x'), x1024(1024, 'x');
  struct Case {
    std::string document, start, end;
    int32_t status;
    std::string content, left;
  };
  const Case cases[] = {
      {"<a>1</a><a>2</a>", "<a>", "</a>", 0, "1", "<a>2</a>"},
      {"x<a></a>y", "<a>", "</a>", 0, "", "xy"},
      {"</a><a>1</a>", "<a>", "</a>", 0, "1",
       "</a>"},  // an end tag before the start tag does not count
      {"</a>", "<a>", "</a>", -2, "", "</a>"},
      {"</a><a>", "<a>", "</a>", -3, "", "</a><a>"},
      {"<a>" + x256 + "</a>", "<a>", "</a>", 0, x256, ""},
      {"<a>" + x256 + "x</a>", "<a>", "</a>", -1, "", "<a>" + x256 + "x</a>"},
      {Tag("n", x1024), "<tags name=\"n\">", "</tags>", 0, x1024, ""},
      {Tag("n", x1024 + "x"), "<tags name=\"n\">", "</tags>", -1, "", Tag("n", x1024 + "x")},
      {"<tags name=\"" + x256 + "x</tags>", "<tags name=\"", "</tags>", -1,
       "",  // 12 bytes are an ordinary start
       "<tags name=\"" + x256 + "x</tags>"},
      {"<aba>", "<aba>", "ba", -1, "", "<aba>"},  // the end tag inside the start tag
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.document.substr(0, 40));
    Document document(c.document);
    EXPECT_EQ(GetElementContent(document.get(), c.start.c_str(), c.end.c_str(), nullptr),
              c.status == -1 ? 0 : c.status);
    EXPECT_EQ(document.Text(), c.document) << "a question changes nothing";
    std::vector<char> out(1025);
    EXPECT_EQ(GetElementContent(document.get(), c.start.c_str(), c.end.c_str(), out.data()),
              c.status);
    EXPECT_EQ(std::string(out.data()), c.content);
    EXPECT_EQ(document.Text(), c.left);
  }
  char out[257];
  Document document("<a>1</a>");
  EXPECT_EQ(GetElementContent(nullptr, "<a>", "</a>", out), -1);
  EXPECT_EQ(GetElementContent(document.get(), nullptr, "</a>", out), -1);
  EXPECT_EQ(GetElementContent(document.get(), "<a>", nullptr, out), -1);
}

TEST(Elements, GetElementTagContent) {
  const std::string wide24 = Repeat("語", 24), free256 = Repeat("\x80", 256), x1024(1024, 'x');
  struct Case {
    std::string document;
    int32_t status;
    std::string name, content, left;
  };
  const Case cases[] = {
      {"a" + Tag("n", "c") + "b", 0, "n", "c", "ab"},
      {Tag("", ""), 0, "", "", ""},
      {Tag(wide24, x1024), 0, wide24, x1024, ""},
      {Tag(wide24 + "x", ""), -41, wide24 + "x", "", Tag(wide24 + "x", "")},
      {Tag(free256, ""), 0, free256, "", ""},
      {Tag(free256 + "\x80", ""), -41, "", "", Tag(free256 + "\x80", "")},
      {Tag("n", x1024 + "x"), -41, "", "", Tag("n", x1024 + "x")},
      {"</tags>" + Tag("n", "c"), -41, "", "", "</tags>" + Tag("n", "c")},
      {"<tags name=\"n</tags>", -41, "", "", "<tags name=\"n</tags>"},
      {"<tags name=\"n</tags>\">", -41, "", "", "<tags name=\"n</tags>\">"},
      {"</tags>", -4, "", "", "</tags>"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.document.substr(0, 40));
    Document document(c.document);
    std::vector<char> name(257), content(1025);
    const int32_t state =
        GetElementTagContent(document.get(), "<tags name=\"", "</tags>", nullptr, content.data());
    EXPECT_EQ(state, c.status == -41 ? 0 : c.status);
    EXPECT_EQ(GetElementTagContent(document.get(), "<tags name=\"", "</tags>", name.data(),
                                   content.data()),
              c.status);
    EXPECT_EQ(std::string(name.data()), c.name);
    EXPECT_EQ(std::string(content.data()), c.content);
    EXPECT_EQ(document.Text(), c.left);
  }
}

TEST(Labels, Statuses) {
  const std::string good = Label("<name>a</name>"), wide24 = Repeat("語", 24);
  const auto named = [](const std::string& more) { return Label("<name>a</name>" + more); };
  struct Case {
    std::string document;
    int32_t status, labels, names, notes, parts;
  };
  const Case cases[] = {
      {"<emoji>" + good + "</emoji>", 0, 1, 1, 1, 1},
      {"<emoji></emoji>", -40, 0, 0, 0, 0},
      {" <emoji>" + good + "</emoji>", -40, 0, 0, 0, 0},
      {"<emoji>" + good, -40, 0, 0, 0, 0},
      {"<emoji></emoji>" + good, -40, 0, 0, 0, 0},  // behind the root
      {"<emoji>" + Repeat(good, 12) + "</emoji>", 0, 10, 10, 10, 10},
      {"<emoji>" + Repeat(good, 10) + "<label></emoji>", 0, 10, 10, 10,
       10},  // an eleventh is not looked at
      {"<emoji>" + good + Label("<note>n</note>") + "</emoji>", -40, 2, 1, 1, 1},
      {"<emoji></label>" + good + "</emoji>", -40, 1, 0, 0, 0},
      {"<emoji>" + good + "</label></emoji>", -40, 1, 1, 1, 1},
      {"<emoji>" + Label("<name>" + wide24 + "</name>") + "</emoji>", 0, 1, 1, 1, 1},
      {"<emoji>" + Label("<name>" + wide24 + "x</name>") + "</emoji>", -40, 1, 0, 0, 0},
      {"<emoji>" + Label("<name>a") + "</emoji>", -40, 1, 0, 0, 0},
      {"<emoji>" + named("<note>" + wide24 + "</note>") + "</emoji>", 0, 1, 1, 1, 1},
      {"<emoji>" + named("<note>" + wide24 + "x</note>") + "</emoji>", -40, 1, 1, 0, 0},
      {"<emoji>" + named("<note>n") + "</emoji>", -40, 1, 1, 0, 0},
      {"<emoji>" + named("<part>" + std::string(256, 'p') + "</part>") + "</emoji>", 0, 1, 1, 1, 1},
      {"<emoji>" + named("<part>" + std::string(257, 'p') + "</part>") + "</emoji>", -40, 1, 1, 1,
       0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.document.substr(0, 60));
    Document document(c.document);
    auto attr = std::make_unique<AttrInfo>();
    EXPECT_EQ(GetLabelInfo(document.get(), attr.get()), c.status);
    EXPECT_EQ(attr->labelCount, c.labels);
    EXPECT_EQ(attr->nameCount, c.names);
    EXPECT_EQ(attr->noteCount, c.notes);
    EXPECT_EQ(attr->partCount, c.parts);
  }
  auto attr = std::make_unique<AttrInfo>();
  EXPECT_EQ(GetLabelInfo(nullptr, attr.get()), -99);
  EXPECT_EQ(GetLabelInfo(Document("<emoji>").get(), nullptr), -99);
}

TEST(Labels, FieldsInAnyOrderAndTheCutBehindTheRoot) {
  const std::string root = "<emoji>" + Label("<part>p</part> <name>a</name>") + "<name>x</name>" +
                           Label("<name>b</name><note></note>") + "</emoji>";
  Document document(root + "<label></emoji>");
  auto attr = std::make_unique<AttrInfo>();
  EXPECT_EQ(GetLabelInfo(document.get(), attr.get()), 0);
  EXPECT_EQ(document.Text(), root);
  EXPECT_STREQ(attr->name[0], "a");
  EXPECT_STREQ(attr->part[0], "p");
  EXPECT_STREQ(attr->name[1], "b");
  EXPECT_STREQ(attr->note[1], "");
}

TEST(PartOfSpeech, NamesAndNumbers) {
  for (uint32_t i = 1; i <= 21; ++i) EXPECT_EQ(GetPartNo(GetPartName(i)), static_cast<int32_t>(i));
  EXPECT_STREQ(GetPartName(1), "名詞");
  EXPECT_STREQ(GetPartName(7), "名詞-ナイ形容詞語幹");
  EXPECT_STREQ(GetPartName(21), "記号");
  for (uint32_t i : {0u, 22u, 255u, UINT32_MAX}) EXPECT_STREQ(GetPartName(i), "");
  for (const char* name : {"", "名詞 ", "名", "noun"}) EXPECT_EQ(GetPartNo(name), 0) << name;
  EXPECT_EQ(GetPartNo(nullptr), 0);
}

struct Collected {
  std::string joined, names, contents;  // names and contents each followed by a blank
  std::string sizes;
  std::string left;
};

Collected Collect(const std::string& text) {
  Document document(text);
  auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(document.get(), tags.get());
  Collected result{tags->joinedNames, "", "", "", document.Text()};
  for (int32_t i = 0; i < tags->elementCount; ++i) {
    result.names += std::string(tags->tagName[i]) + " ";
    result.contents += std::string(tags->tagElement[i]) + " ";
  }
  for (int32_t i = 0; i < tags->groupCount; ++i)
    result.sizes += std::to_string(tags->groupSize[i]) + " ";
  return result;
}

TEST(TagGroups, GroupsInDocumentOrder) {
  const Collected plain =
      Collect("x" + Tag("a", "1") + Tag("b", "2") + "y" + Tag("a", "3") + "<tags name=\"c\">");
  EXPECT_EQ(plain.joined, "a,b");
  EXPECT_EQ(plain.names, "a b a ");
  EXPECT_EQ(plain.contents, "1 2 3 ");
  EXPECT_EQ(plain.sizes, "2 1 ");
  EXPECT_EQ(plain.left, "xy<tags name=\"c\">");
  // A name that an earlier group's begins with joins that group under its own name.
  const Collected prefix =
      Collect(Tag("abc", "1") + Tag("ab", "2") + Tag("abcd", "3") + Tag("", "4"));
  EXPECT_EQ(prefix.joined, "abc,abcd");
  EXPECT_EQ(prefix.names, "abc ab abcd  ");
  EXPECT_EQ(prefix.sizes, "3 1 ");
  const Collected emptyFirst = Collect(Tag("", "1") + Tag("a", "2") + Tag("", "3"));
  EXPECT_EQ(emptyFirst.joined, "a");
  EXPECT_EQ(emptyFirst.sizes, "2 1 ");
}

TEST(TagGroups, Limits) {
  EXPECT_EQ(Collect(Repeat(Tag("a", "1"), 11) + Tag("b", "2")).sizes, "10 1 ");
  std::string eleven, hundredAndOne;
  for (char c = 'a'; c <= 'k'; ++c) eleven += Tag(std::string(1, c), "1");
  EXPECT_EQ(Collect(eleven + Tag("a", "2")).joined, "a,b,c,d,e,f,g,h,i,j");
  EXPECT_EQ(Collect(eleven + Tag("a", "2")).sizes, "2 1 1 1 1 1 1 1 1 1 ");
  EXPECT_EQ(Collect(Repeat(Tag("a", ""), 101)).left, Tag("a", "")) << "the hundred-and-first stays";
  // Ten names of 256 bytes, of which only one is a character, fill the joined names.
  std::string longest;
  for (char c = '0'; c <= '9'; ++c) longest += Tag(c + std::string(255, '\x80'), "");
  EXPECT_EQ(Collect(longest).joined.size(), 2569u);
}

TEST(TagGroups, OneUnusableElementEmptiesAll) {
  const std::string bad = Tag(std::string(25, 'n'), "") + Tag("z", "9");
  Document document(Tag("a", "1") + bad);
  auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(document.get(), tags.get());
  EXPECT_EQ(document.Text(), bad);
  EXPECT_STREQ(tags->joinedNames, "");
  EXPECT_STREQ(tags->tagName[0], "");
  EXPECT_STREQ(tags->tagElement[0], "");
}

}  // namespace
}  // namespace lumigram::test
