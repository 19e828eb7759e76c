// Takes single elements out of a document. Input: start tag, end tag, the document.
#include "fuzz/input.h"

using namespace lumigram::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const std::string start = input.Text(64), end = input.Text(64);
  const std::string text = input.Text(kLumigramMaxDocumentBytes);
  const auto document = [&] {
    auto block = Block(text.size() + 1);
    std::copy(text.begin(), text.end(), block.get());
    return block;
  };

  const auto ordinary = document();
  const auto content = Block(1025);
  const int32_t status =
      GetElementContent(ordinary.get(), start.c_str(), end.c_str(), content.get());
  RequireStatus(status, {0, -1, -2, -3});
  const std::string left = ordinary.get(), taken = content.get();
  Require(status != 0 || left.size() + start.size() + taken.size() + end.size() == text.size(),
          "one element is cut out");
  Require(status == 0 || (left == text && taken.empty()), "a failure changes nothing");

  const auto group = document();
  const auto name = Block(257), value = Block(1025);
  const int32_t groupStatus =
      GetElementTagContent(group.get(), start.c_str(), end.c_str(), name.get(), value.get());
  RequireStatus(groupStatus, {0, -1, -2, -3, -4, -41});
  Require(groupStatus == 0 || group.get() == text, "a failure does not change the document");
  return 0;
}
