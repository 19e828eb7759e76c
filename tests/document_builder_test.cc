// Documents built from records: contents, limits, and which fault counts.
#include "core/write/document_builder.h"

#include <gtest/gtest.h>

#include <cstring>

#include "core/base/text.h"

namespace lumigram::test {
namespace {

// Tag groups that bring the document of a record without anything else to the given size.
void FillTo(size_t size, AttrInfo& attr) {
  for (int i = 0; i < 10; ++i) {
    CopyText(attr.tag[i].tagName, "n");
    CopyText(attr.tag[i].tagElement, std::string(i < 9 ? 1000 : size - 9235, 'x'));
  }
}

constexpr char k24[] = "語語語語語語語語語語語語語語語語語語語語語語語語";
const std::string k25 = std::string(k24) + "x";

TEST(BuildDocument, LimitsAndOrderOfFaults) {
  constexpr auto kName = &AttrInfo::name, kNote = &AttrInfo::note;
  const std::string full(257, '\x80');  // no terminator, and bytes that count as no character
  struct Text {
    char (AttrInfo::*field)[10][257];
    int index;
    std::string text;
  };
  struct Case {
    std::vector<Text> texts;
    size_t filledTo;  // 0: no tags
    Status status;
    std::string inside;
  };
  const Case cases[] = {
      {{}, 0, kOk, ""},
      {{{kName, 0, k24}, {kNote, 0, k24}},
       0,
       kOk,
       std::string("<label><name>") + k24 + "</name><note>" + k24 + "</note></label>"},
      {{{kName, 9, k25}}, 0, kTooManyCharacters, ""},
      {{{kName, 9, k25}}, 10248, kTooManyCharacters, ""},
      {{{kName, 0, "n"}, {kNote, 0, k25}}, 0, kTooManyCharacters, ""},
      {{{kNote, 0, k25}}, 0, kOk, ""},
      {{{kName, 0, full}, {kName, 1, "n"}},
       0,
       kOk,
       "<label><name>" + full.substr(1) + "</name></label><label><name>n</name></label>"},
      {{}, 10239, kOk, ""},
      {{}, 10240, kTooLong, ""},
      {{}, 10248, kTooLong, ""},  // no room for the last group
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const auto attr = std::make_unique<AttrInfo>();
    for (const Text& t : c.texts) memcpy(((*attr).*t.field)[t.index], t.text.data(), t.text.size());
    if (c.filledTo > 0) FillTo(c.filledTo, *attr);
    XmlStringInfo document;
    memset(&document, '#', sizeof(document));
    EXPECT_EQ(BuildDocument(*attr, &document), c.status);
    if (c.status != kOk) continue;
    EXPECT_EQ(strnlen(document.text, 10240), static_cast<size_t>(document.length));
    EXPECT_TRUE(c.filledTo > 0 || document.text == "<emoji>" + c.inside + "</emoji>");
  }
}

TEST(BuildDocument, EverythingInItsOrderGapsLeftOut) {
  const auto attr = std::make_unique<AttrInfo>();
  attr->tag[99] = {"t<", ""};
  attr->tag[7] = {"t<", "c&"};
  attr->tag[8] = {"", "no name"};
  CopyText(attr->type, "y");
  CopyText(attr->category, "x");
  CopyText(attr->part[9], "p");
  CopyText(attr->name[9], "n");
  CopyText(attr->name[3], "m");
  CopyText(attr->note[3], "o");
  CopyText(attr->part[4], "no name");
  XmlStringInfo document;
  EXPECT_EQ(BuildDocument(*attr, &document), kOk);
  EXPECT_STREQ(document.text,
               "<emoji><label><name>m</name><note>o</note></label><label><name>n</name>"
               "<part>p</part></label><category>x</category><type>y</type>"
               "<tags name=\"t<\">c&</tags><tags name=\"t<\"></tags></emoji>");
}

}  // namespace
}  // namespace lumigram::test
