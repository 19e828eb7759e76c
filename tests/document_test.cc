// Taking a document apart: elements, labels, parts of speech, tag groups.
#include <gtest/gtest.h>

#include "lumigram.h"
#include "tests/support/documents.h"

namespace lumigram::test {
namespace {

// A document in a heap block of its own size, so that a sanitizer sees one byte too many.
std::vector<char> Block(const std::string& text) {
  return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

TEST(Elements, CountsCharacters) {
  EXPECT_EQ(GetStrLenUtf8(nullptr), 0u);
  EXPECT_EQ(GetStrLenUtf8("ab語"), 3u);
  EXPECT_EQ(GetStrLenUtf8("\x01\t\n\x1F\x7F\x80\xBF\xF8\xFF"), 0u);
  EXPECT_EQ(GetStrLenUtf8(" ~\xC0\xF7"), 4u);
}

TEST(Elements, GetElementContent) {
  const std::string x256(256, 'x'), over = "<a>" + x256 + "x</a>",
                                    longTag = Tag("n", Repeat("x", 1024));
  const std::string longerTag = Tag("n", Repeat("x", 1025)),
                    openTag = "<tags name=\"" + x256 + "x</tags>";
  const struct {
    std::string document;
    const char *start, *end;
    int32_t status;
    std::string content, left;
  } cases[] = {
      {"<a>1</a><a>2</a>", "<a>", "</a>", 0, "1", "<a>2</a>"},
      {"x<a></a>y", "<a>", "</a>", 0, "", "xy"},
      // An end tag before the start tag does not count.
      {"</a><a>1</a>", "<a>", "</a>", 0, "1", "</a>"},
      {"</a>", "<a>", "</a>", -2, "", "</a>"},
      {"</a><a>", "<a>", "</a>", -3, "", "</a><a>"},
      {"<a>" + x256 + "</a>", "<a>", "</a>", 0, x256, ""},
      {over, "<a>", "</a>", -1, "", over},
      {longTag, "<tags name=\"n\">", "</tags>", 0, Repeat("x", 1024), ""},
      {longerTag, "<tags name=\"n\">", "</tags>", -1, "", longerTag},
      // A start of 12 bytes is an ordinary one.
      {openTag, "<tags name=\"", "</tags>", -1, "", openTag},
      // The end tag lies inside the start tag.
      {"<aba>", "<aba>", "ba", -1, "", "<aba>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.document.substr(0, 40));
    auto document = Block(c.document);
    std::vector<char> out(1025);
    EXPECT_EQ(GetElementContent(document.data(), c.start, c.end, nullptr),
              c.status == -1 ? 0 : c.status);
    EXPECT_EQ(document.data(), c.document) << "a question changes nothing";
    EXPECT_EQ(GetElementContent(document.data(), c.start, c.end, out.data()), c.status);
    EXPECT_EQ(out.data(), c.content);
    EXPECT_EQ(document.data(), c.left);
  }
  char out[257], document[] = "<a>1</a>";
  EXPECT_EQ(GetElementContent(nullptr, "<a>", "</a>", out), -1);
  EXPECT_EQ(GetElementContent(document, nullptr, "</a>", out), -1);
  EXPECT_EQ(GetElementContent(document, "<a>", nullptr, out), -1);
}

TEST(Elements, GetElementTagContent) {
  const std::string wide24 = Repeat("語", 24), free256(256, '\x80'), x1024(1024, 'x');
  const struct {
    std::string document;
    int32_t status;
    std::string name, content, left;
  } cases[] = {
      {std::string("a") + Tag("n", "c") + "b", 0, "n", "c", "ab"},
      {Tag("", ""), 0, "", "", ""},
      {Tag(wide24, x1024), 0, wide24, x1024, ""},
      {Tag(wide24 + "x", ""), -41, wide24 + "x", "", Tag(wide24 + "x", "")},
      {Tag(free256, ""), 0, free256, "", ""},
      {Tag(free256 + "\x80", ""), -41, "", "", Tag(free256 + "\x80", "")},
      {Tag("n", x1024 + "x"), -41, "", "", Tag("n", x1024 + "x")},
      {"</tags>" + Tag("n", "c"), -41, "", "", "</tags>" + Tag("n", "c")},
      {"<tags name=\"n</tags>\">", -41, "", "", "<tags name=\"n</tags>\">"},
      {"</tags>", -4, "", "", "</tags>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.document.substr(0, 40));
    auto document = Block(c.document);
    char name[257] = {}, content[1025] = {};
    const auto get = [&](char* to) {
      return GetElementTagContent(document.data(), "<tags name=\"", "</tags>", to, content);
    };
    EXPECT_EQ(get(nullptr), c.status == -41 ? 0 : c.status);
    EXPECT_EQ(get(name), c.status);
    EXPECT_EQ(name, c.name);
    EXPECT_EQ(content, c.content);
    EXPECT_EQ(document.data(), c.left);
  }
}

TEST(Labels, Statuses) {
  const std::string good = Label("a"), wide24 = Repeat("語", 24), end = "</emoji>";
  // The document behind its start tag; status, labels, names, notes, parts.
  const std::pair<std::string, std::array<int32_t, 5>> cases[] = {
      {good + end, {0, 1, 1, 1, 1}},
      {good, {-40, 0, 0, 0, 0}},
      {end + good, {-40, 0, 0, 0, 0}},  // behind the root
      {Repeat(good, 12) + end, {0, 10, 10, 10, 10}},
      {Repeat(good, 10) + "<label>" + end, {0, 10, 10, 10, 10}},  // no eleventh is looked at
      {good + "<label><note>n</note></label>" + end, {-40, 2, 1, 1, 1}},
      {"</label>" + good + end, {-40, 1, 0, 0, 0}},
      {good + "</label>" + end, {-40, 1, 1, 1, 1}},
      {Label(wide24) + end, {0, 1, 1, 1, 1}},
      {Label(wide24 + "x") + end, {-40, 1, 0, 0, 0}},
      {"<label><name>a</label>" + end, {-40, 1, 0, 0, 0}},
      {Label("a", "<note>" + wide24 + "</note>") + end, {0, 1, 1, 1, 1}},
      {Label("a", "<note>" + wide24 + "x</note>") + end, {-40, 1, 1, 0, 0}},
      {Label("a", "<note>n") + end, {-40, 1, 1, 0, 0}},
      {Label("a", "<part>" + std::string(256, 'p') + "</part>") + end, {0, 1, 1, 1, 1}},
      {Label("a", "<part>" + std::string(257, 'p') + "</part>") + end, {-40, 1, 1, 1, 0}},
  };
  auto attr = std::make_unique<AttrInfo>();
  for (const auto& [rest, want] : cases) {
    *attr = {};
    const int32_t status = GetLabelInfo(Block("<emoji>" + rest).data(), attr.get());
    EXPECT_EQ(
        (std::array{status, attr->labelCount, attr->nameCount, attr->noteCount, attr->partCount}),
        want)
        << rest.substr(0, 60);
  }
  EXPECT_EQ(GetLabelInfo(Block(" <emoji>" + good + end).data(), attr.get()), -40);
  EXPECT_EQ(GetLabelInfo(nullptr, attr.get()), -99);
  EXPECT_EQ(GetLabelInfo(Block("<emoji>").data(), nullptr), -99);
}

TEST(Labels, FieldsInAnyOrderAndTheCutBehindTheRoot) {
  const std::string root = "<emoji><label><part>p</part> <name>a</name></label><name>x</name>" +
                           Label("b", "<note></note>") + "</emoji>";
  auto document = Block(root + "<label></emoji>");
  auto attr = std::make_unique<AttrInfo>();
  EXPECT_EQ(GetLabelInfo(document.data(), attr.get()), 0);
  EXPECT_EQ(document.data(), root);
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
  std::string joined, names, contents, sizes;  // the latter three each followed by a blank
  std::string left;
};

Collected Collect(const std::string& text) {
  auto document = Block(text);
  auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(document.data(), tags.get());
  Collected result{tags->joinedNames, "", "", "", document.data()};
  for (int32_t i = 0; i < tags->elementCount; ++i) {
    result.names += std::string(tags->tagName[i]) + " ";
    result.contents += std::string(tags->tagElement[i]) + " ";
  }
  for (int32_t i = 0; i < tags->groupCount; ++i)
    result.sizes += std::to_string(tags->groupSize[i]) + " ";
  return result;
}

TEST(TagGroups, GroupsInDocumentOrder) {
  const Collected plain = Collect(std::string("x") + Tag("a", "1") + Tag("b", "2") + "y" +
                                  Tag("a", "3") + "<tags name=\"c\">");
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
  std::string eleven, longest;
  for (char c = 'a'; c <= 'k'; ++c) eleven += Tag(std::string(1, c), "1");
  EXPECT_EQ(Collect(eleven + Tag("a", "2")).joined, "a,b,c,d,e,f,g,h,i,j");
  EXPECT_EQ(Collect(eleven + Tag("a", "2")).sizes, "2 1 1 1 1 1 1 1 1 1 ");
  EXPECT_EQ(Collect(Repeat(Tag("a", ""), 101)).left, Tag("a", "")) << "the hundred-and-first stays";
  // Ten names of 256 bytes, of which only one is a character, fill the joined names.
  for (char c = '0'; c <= '9'; ++c) longest += Tag(c + std::string(255, '\x80'), "");
  EXPECT_EQ(Collect(longest).joined.size(), 2569u);
}

TEST(TagGroups, OneUnusableElementEmptiesAll) {
  const std::string bad = Tag(std::string(25, 'n'), "") + Tag("z", "9");
  auto document = Block(Tag("a", "1") + bad);
  auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(document.data(), tags.get());
  EXPECT_EQ(document.data(), bad);
  for (const char* text : {tags->joinedNames, tags->tagName[0], tags->tagElement[0]})
    EXPECT_STREQ(text, "");
}

}  // namespace
}  // namespace lumigram::test
