// Documents built from records: contents, limits, and which fault counts.
#include "core/write/document_builder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "core/base/text.h"

namespace lumigram::test {
namespace {

const std::string k24Characters = [] {
  std::string text;
  for (int i = 0; i < 24; ++i) text += "語";
  return text;
}();
const std::string k25Characters = k24Characters + "x";

// Tag groups that bring the document of an otherwise empty record to the given size.
void FillTo(size_t size, AttrInfo& attr) {
  const size_t kRoot = strlen("<emoji></emoji>"), kGroup = strlen("<tags name=\"n\"></tags>");
  size_t left = size - kRoot;
  for (TagEntry* tag = attr.tag; left > 0; ++tag) {
    // Never leave less than a group needs.
    const size_t step = left <= kGroup + 1024 ? left : std::min(kGroup + 1024, left - kGroup);
    CopyText(tag->tagName, "n");
    CopyText(tag->tagElement, std::string(step - kGroup, 'x'));
    left -= step;
  }
}

TEST(BuildDocument, ContentsLimitsAndOrderOfFaults) {
  struct Case {
    const char* name;
    std::function<void(AttrInfo&)> fill;
    Status status;
    std::string inside;  // of an accepted document; "*": not compared
  };
  const Case cases[] = {
      {"an empty record", [](AttrInfo&) {}, kOk, ""},
      {"everything in its order, gaps left out",
       [](AttrInfo& a) {
         a.tag[99] = {"t<", ""};
         a.tag[7] = {"t<", "c&"};
         a.tag[8] = {"", "no name"};
         CopyText(a.type, "y");
         CopyText(a.category, "x");
         CopyText(a.part[9], "p");
         CopyText(a.name[9], "n");
         CopyText(a.name[3], "m");
         CopyText(a.note[3], "o");
         CopyText(a.part[4], "no name");
       },
       kOk,
       "<label><name>m</name><note>o</note></label><label><name>n</name><part>p</part></label>"
       "<category>x</category><type>y</type><tags name=\"t<\">c&</tags><tags name=\"t<\"></tags>"},
      {"24 characters each",
       [](AttrInfo& a) {
         CopyText(a.name[0], k24Characters);
         CopyText(a.note[0], k24Characters);
       },
       kOk, "<label><name>" + k24Characters + "</name><note>" + k24Characters + "</note></label>"},
      {"25 in the last name, and tags that are too many",
       [](AttrInfo& a) {
         FillTo(20000, a);
         CopyText(a.name[9], k25Characters);
       },
       kTooManyCharacters, ""},
      {"25 in a note",
       [](AttrInfo& a) {
         CopyText(a.name[0], "n");
         CopyText(a.note[0], k25Characters);
       },
       kTooManyCharacters, ""},
      {"25 in a note without a name", [](AttrInfo& a) { CopyText(a.note[0], k25Characters); }, kOk,
       ""},
      {"a field without terminator, in bytes that count as no character",
       [](AttrInfo& a) {
         memset(a.name[0], '\x80', sizeof(a.name[0]));
         CopyText(a.name[1], "n");
       },
       kOk,
       "<label><name>" + std::string(256, '\x80') + "</name></label><label><name>n</name></label>"},
      {"10,239 bytes", [](AttrInfo& a) { FillTo(10239, a); }, kOk, "*"},
      {"10,240 bytes", [](AttrInfo& a) { FillTo(10240, a); }, kTooLong, ""},
      {"no room for the last group", [](AttrInfo& a) { FillTo(10240 + 8, a); }, kTooLong, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto attr = std::make_unique<AttrInfo>();
    c.fill(*attr);
    XmlStringInfo document;
    memset(&document, '#', sizeof(document));
    EXPECT_EQ(BuildDocument(*attr, &document), c.status);
    if (c.status != kOk) continue;
    ASSERT_EQ(strnlen(document.text, 10240), static_cast<size_t>(document.length));
    if (c.inside == "*") continue;
    EXPECT_EQ(document.text, "<emoji>" + c.inside + "</emoji>");
  }
}

// Ten labels alone fill no document, so only the builder itself can meet a label that is both.
TEST(DocumentBuilder, ALabelIsTestedBeforeRoomIs) {
  XmlStringInfo document;
  DocumentBuilder builder(&document);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(builder.AddTagGroup("n", std::string(1000, 'x')), kOk);
  EXPECT_EQ(builder.AddLabel("n", std::string(25, 'x'), ""), kTooManyCharacters);
  EXPECT_EQ(builder.AddLabel("n", "", ""), kTooLong);
}

}  // namespace
}  // namespace lumigram::test
