// Documents built from records: contents, limits, and which fault counts.
#include "core/write/document_builder.h"

#include <gtest/gtest.h>

#include <cstring>

#include "core/base/text.h"

namespace lumigram::test {
namespace {

// What is inside the document's root, or the status.
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
  memset(attr.name[8], '\x80', 257);  // no terminator, in bytes that count as no character
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
  // With nine groups of 1,022 bytes, the root, and what the tenth takes besides its content.
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
