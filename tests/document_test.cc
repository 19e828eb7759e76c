// Taking documents apart into elements, labels and tag groups, and building them from records.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "core/base/text.h"
#include "core/document/document_builder.h"
#include "core/document/part_of_speech.h"
#include "tests/support/bytes.h"

namespace lumigram::test {
namespace {

// A document in a heap block of its size, so that AddressSanitizer finds an access past its end.
std::vector<char> Block(const std::string& text) {
  return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

TEST(Elements, CountsCharacters) {
  EXPECT_EQ(GetStrLenUtf8(nullptr), 0u);
  EXPECT_EQ(GetStrLenUtf8("ab語"), 3u);
  EXPECT_EQ(GetStrLenUtf8("\x01\t\n\x1F\x7F\x80\xBF\xF8\xFF"), 0u);
  EXPECT_EQ(GetStrLenUtf8(" ~\xC0\xF7"), 4u);
}

// Checks for an element, and takes it: "status content|document".
std::string Take(const std::string& text, const char* start, const char* end) {
  auto document = Block(text);
  char out[1025] = {};
  const int32_t asked = GetElementContent(document.data(), start, end, nullptr);
  EXPECT_EQ(document.data(), text) << "a check changes nothing";
  const int32_t status = GetElementContent(document.data(), start, end, out);
  EXPECT_EQ(asked, status == -1 ? 0 : status);
  return std::to_string(status) + " " + out + "|" + document.data();
}

TEST(Elements, GetElementContent) {
  const std::string x256(256, 'x'), x1024(1024, 'x'), over = "<a>" + x256 + "x</a>";
  const std::string longer = Tag("n", x1024 + "x"), open = "<tags name=\"" + x256 + "x</tags>";
  EXPECT_EQ(Take("<a>1</a><a>2</a>", "<a>", "</a>"), "0 1|<a>2</a>");
  EXPECT_EQ(Take("x<a></a>y", "<a>", "</a>"), "0 |xy");
  EXPECT_EQ(Take("</a><a>1</a>", "<a>", "</a>"), "0 1|</a>") << "only after the start tag";
  EXPECT_EQ(Take("</a>", "<a>", "</a>"), "-2 |</a>");
  EXPECT_EQ(Take("</a><a>", "<a>", "</a>"), "-3 |</a><a>");
  EXPECT_EQ(Take("<a>" + x256 + "</a>", "<a>", "</a>"), "0 " + x256 + "|");
  EXPECT_EQ(Take(over, "<a>", "</a>"), "-1 |" + over);
  EXPECT_EQ(Take(Tag("n", x1024), "<tags name=\"n\">", "</tags>"), "0 " + x1024 + "|");
  EXPECT_EQ(Take(longer, "<tags name=\"n\">", "</tags>"), "-1 |" + longer);
  EXPECT_EQ(Take(open, "<tags name=\"", "</tags>"), "-1 |" + open) << "a start tag without a name";
  EXPECT_EQ(Take("<aba>", "<aba>", "ba"), "-1 |<aba>") << "the end tag is in the start tag";
}

// The same for a tag element: "status name=content|document".
std::string TakeTag(const std::string& text) {
  auto document = Block(text);
  char name[257] = {}, content[1025] = {};
  const auto get = [&](char* to) {
    return GetElementTagContent(document.data(), "<tags name=\"", "</tags>", to, content);
  };
  const int32_t asked = get(nullptr), status = get(name);
  EXPECT_EQ(asked, status == -41 ? 0 : status);
  return std::to_string(status) + " " + name + "=" + content + "|" + document.data();
}

TEST(Elements, GetElementTagContent) {
  const std::string wide24 = Repeat("語", 24), free256(256, '\x80'), x1024(1024, 'x');
  EXPECT_EQ(TakeTag(std::string("a") + Tag("n", "c") + "b"), "0 n=c|ab");
  EXPECT_EQ(TakeTag(Tag("", "")), "0 =|");
  EXPECT_EQ(TakeTag(Tag(wide24, x1024)), "0 " + wide24 + "=" + x1024 + "|");
  EXPECT_EQ(TakeTag(Tag(free256, "")), "0 " + free256 + "=|");
  EXPECT_EQ(TakeTag("</tags>"), "-4 =|</tags>");
  const std::string wide = Tag(wide24 + "x", "");
  EXPECT_EQ(TakeTag(wide), "-41 " + wide24 + "x=|" + wide);
  for (const std::string& refused :
       {Tag(free256 + "\x80", ""), Tag("n", x1024 + "x"), std::string("</tags>") + Tag("n", "c"),
        std::string("<tags name=\"n</tags>\">")}) {
    EXPECT_EQ(TakeTag(refused), "-41 =|" + refused);
  }
}

// "status labels names notes parts|name,note,part|...|document" of the accepted labels. The record
// has been used for another picture before.
std::string ReadLabels(const std::string& text) {
  auto document = Block(text);
  auto attr = std::make_unique<AttrInfo>();
  memset(attr.get(), '#', sizeof *attr);
  std::string all = std::to_string(GetLabelInfo(document.data(), attr.get()));
  for (int32_t n : {attr->labelCount, attr->nameCount, attr->noteCount, attr->partCount})
    all += " " + std::to_string(n);
  for (int32_t i = 0; i < attr->partCount; ++i)
    all += std::string("|") + attr->name[i] + "," + attr->note[i] + "," + attr->part[i];
  for (int32_t i = attr->labelCount; i < 10; ++i)
    all += attr->name[i] + std::string(attr->note[i]) + attr->part[i];  // unused
  return all + "|" + document.data();
}

TEST(Labels, StatusesCountsAndTexts) {
  const std::string a = Label("a"), wide24 = Repeat("語", 24), p256(256, 'p'),
                    note = "<note>" + wide24;
  // The content of the root; the status, the counts and the labels.
  const std::pair<std::string, std::string> cases[] = {
      {"", "-40 0 0 0 0"},
      {Repeat(a, 10) + "<label>",
       "0 10 10 10 10" + Repeat("|a,,", 10)},  // an eleventh label is not read
      {"<label><part>p</part> <name>a</name></label><name>x</name>" + Label("b", "<note></note>"),
       "0 2 2 2 2|a,,p|b,,"},
      {a + "<label><note>n</note></label>", "-40 2 1 1 1|a,,"},
      {"</label> " + a, "-40 1 0 0 0"},
      {a + "</label>", "-40 1 1 1 1|a,,"},
      {Label(wide24, note + "</note><part>" + p256 + "</part>"),
       "0 1 1 1 1|" + wide24 + "," + wide24 + "," + p256},
      {Label(wide24 + "x"), "-40 1 0 0 0"},
      {"<label><name>a</label>", "-40 1 0 0 0"},
      {Label("a", note + "x</note>"), "-40 1 1 0 0"},
      {Label("a", "<note>n"), "-40 1 1 0 0"},
      {Label("a", "<part>" + p256 + "p</part>"), "-40 1 1 1 0"},
      // Labels of 10,240 and 10,241 bytes. A picture has no document of this size.
      {Label("a", std::string(10211, ' ')), "0 1 1 1 1|a,,"},
      {Label("a", std::string(10212, ' ')), "-40 1 0 0 0"},
  };
  for (const auto& [inRoot, want] : cases) {
    const std::string root = "<emoji>" + inRoot + "</emoji>";
    EXPECT_EQ(ReadLabels(root + a + "</emoji>"), want + "|" + root) << "cut after the root";
  }
  for (const std::string& noRoot : {"<emoji>" + a, " <emoji>" + a + "</emoji>"})
    EXPECT_EQ(ReadLabels(noRoot), "-40 0 0 0 0|" + noRoot);
}

// Pictures store these names. install_test.sh compares the list with Java and the manual page.
TEST(PartOfSpeech, NamesAndNumbers) {
  std::ifstream list(LUMIGRAM_SOURCE "/tests/parts_of_speech.txt");
  int32_t number = 0;
  for (std::string stored, english; list >> number >> stored >> english;) {
    EXPECT_EQ(GetPartName(static_cast<uint32_t>(number)), stored);
    EXPECT_EQ(EnglishPartName(number), english);
    EXPECT_EQ(GetPartNo(stored.c_str()), number) << stored;
    EXPECT_EQ(GetPartNo(english.c_str()), 0) << english;
    for (const std::string& name : {stored, english}) EXPECT_EQ(FindPart(name), number) << name;
  }
  EXPECT_EQ(number, 21);
  for (uint32_t i : {0u, 22u, 255u, UINT32_MAX}) {
    EXPECT_STREQ(GetPartName(i), "");
    EXPECT_STREQ(EnglishPartName(static_cast<int32_t>(i)), "");
  }
  for (const char* name : std::initializer_list<const char*>{"", "名詞 ", "名", nullptr})
    EXPECT_EQ(GetPartNo(name), 0) << name;
}

// The joined names, the elements, the sizes of the groups, and the rest of the document.
std::string Collect(const std::string& text) {
  auto document = Block(text);
  auto tags = std::make_unique<TagCollection>();
  memset(tags->tagName, '#', sizeof tags->tagName);  // of another picture
  memset(tags->tagElement, '#', sizeof tags->tagElement);
  CollectTagGroups(document.data(), tags.get());
  std::string all = tags->joinedNames + std::string("|");
  for (int32_t i = 0; i < tags->elementCount; ++i)
    all += tags->tagName[i] + std::string("=") + tags->tagElement[i] + " ";
  all += "|";
  for (int32_t i = 0; i < tags->groupCount; ++i) all += std::to_string(tags->groupSize[i]) + " ";
  const bool emptied = tags->tagName[99][256] + tags->tagElement[99][1024] == 0;
  return all + "|" + document.data() + (emptied ? " emptied" : "");
}

TEST(TagGroups, GroupsInDocumentOrder) {
  const std::string abc = Tag("abc", "1"), empty = Tag("", "4"), open = "<tags name=\"c\">";
  EXPECT_EQ(Collect(std::string("x") + Tag("a", "1") + Tag("b", "2") + "y" + Tag("a", "3") + open),
            "a,b|a=1 b=2 a=3 |2 1 |xy" + open);
  // An element joins an earlier group whose name begins with its own, and keeps its own name.
  EXPECT_EQ(Collect(abc + Tag("ab", "2") + Tag("abcd", "3") + empty),
            "abc,abcd|abc=1 ab=2 abcd=3 =4 |3 1 |");
  EXPECT_EQ(Collect(empty + abc + empty), "abc|=4 abc=1 =4 |2 1 |");
  const std::string bad = Tag(std::string(25, 'n'), "") + Tag("z", "9");
  EXPECT_EQ(Collect(abc + bad), "|= |1 |" + bad + " emptied") << "one unusable element empties all";
}

TEST(TagGroups, Limits) {
  EXPECT_EQ(Collect(Repeat(Tag("a", "1"), 11) + Tag("b", "2")),
            "a,b|" + Repeat("a=1 ", 10) + "b=2 |10 1 |");
  std::string eleven, longest;
  for (char c = 'a'; c <= 'k'; ++c) eleven += Tag(std::string(1, c), "1");
  EXPECT_EQ(Collect(eleven + Tag("a", "2")),
            "a,b,c,d,e,f,g,h,i,j|a=1 b=1 c=1 d=1 e=1 f=1 g=1 h=1 i=1 j=1 a=2 |"
            "2 1 1 1 1 1 1 1 1 1 |");
  EXPECT_TRUE(Collect(Repeat(Tag("a", ""), 101)).ends_with(" |" + Tag("a", ""))) << "one stays";
  // Ten names of 256 bytes, each of one counted character, fill the joined names.
  for (char c = '0'; c <= '9'; ++c) longest += Tag(c + std::string(255, '\x80'), "");
  EXPECT_EQ(Collect(longest).find('|'), 2569u);
}

// The content of the document's root, or the status.
std::string Built(const AttrInfo& attr) {
  XmlStringInfo document;
  memset(&document, '#', sizeof(document));
  if (const Status s = BuildDocument(attr, &document); s != kOk) return std::to_string(s);
  const std::string text = document.text;
  EXPECT_EQ(text.size(), static_cast<size_t>(document.length));
  EXPECT_TRUE(text.starts_with("<emoji>") && text.ends_with("</emoji>")) << text;
  return text.substr(7, text.size() - 15);
}

TEST(BuildDocument, ElementsInTheirOrder) {
  AttrInfo attr = {};
  EXPECT_EQ(Built(attr), "");
  attr.tag[99] = {"t<", ""};
  attr.tag[7] = {"t<", "c&"};
  attr.tag[8] = {"", "no name"};
  CopyText(attr.type, "y");
  CopyText(attr.category, "x");
  memset(attr.name[8], '\x80', 257);  // no terminator, and no byte that counts as a character
  CopyText(attr.part[9], "p");
  CopyText(attr.name[9], "n");
  CopyText(attr.name[3], "m");
  CopyText(attr.note[3], "o");
  CopyText(attr.part[4], "no name");
  EXPECT_EQ(Built(attr),
            "<label><name>m</name><note>o</note></label><label><name>" + std::string(256, '\x80') +
                "</name></label><label><name>n</name><part>p</part></label><category>x</category>"
                "<type>y</type><tags name=\"t<\">c&</tags><tags name=\"t<\"></tags>");
}

TEST(BuildDocument, LimitsAndOrderOfFaults) {
  const std::string at = "語語語語語語語語語語語語語語語語語語語語語語語語", over = at + "x";
  AttrInfo attr = {};
  CopyText(attr.note[0], over);
  EXPECT_EQ(Built(attr), "") << "a note without a name";
  CopyText(attr.name[0], at);
  EXPECT_EQ(Built(attr), "-42");
  CopyText(attr.note[0], at);
  EXPECT_EQ(Built(attr), "<label><name>" + at + "</name><note>" + at + "</note></label>");
  // Nine tags of 1,022 bytes, 15 bytes of the root, and 22 of the tenth tag besides its content.
  attr = {};
  for (int i = 0; i < 9; ++i) {
    CopyText(attr.tag[i].tagName, "n");
    CopyText(attr.tag[i].tagElement, std::string(1000, 'x'));
  }
  CopyText(attr.tag[9].tagName, "n");
  for (const size_t size : {10239, 10240, 10248}) {
    CopyText(attr.tag[9].tagElement, std::string(size - 9 * 1022 - 15 - 22, 'x'));
    EXPECT_EQ(Built(attr).substr(0, 5), size == 10239 ? "<tags" : "-41");
  }
  CopyText(attr.name[9], over);
  EXPECT_EQ(Built(attr), "-42");
}

}  // namespace
}  // namespace lumigram::test
