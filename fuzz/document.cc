// The functions by which a batch read takes a document apart: labels, tag groups, category. Input:
// the document.
#include "fuzz/input.h"

using namespace lumigram::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes text(data, data + std::min<size_t>(size, kLumigramMaxDocumentBytes));
  const auto document = Block(text.size() + 1);
  std::copy(text.begin(), text.end(), document.get());

  const auto attr = std::make_unique<AttrInfo>();
  const int32_t status = GetLabelInfo(document.get(), attr.get());
  RequireStatus(status, {0, -40});
  Require(attr->labelCount >= attr->nameCount && attr->nameCount >= attr->noteCount &&
              attr->noteCount >= attr->partCount,
          "later counts of labels are not larger than earlier ones");
  Require(attr->partCount <= kLumigramMaxLabels && attr->labelCount <= kLumigramMaxLabels,
          "at most ten labels");
  Require(status != 0 || (attr->partCount == attr->labelCount && attr->labelCount > 0),
          "on success all labels are complete");

  const auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(document.get(), tags.get());
  Require(tags->groupCount <= kLumigramMaxTagGroups && tags->elementCount <= kLumigramMaxTags,
          "counts of groups and elements are within limits");
  int32_t grouped = 0;
  for (int32_t i = 0; i < tags->groupCount; ++i) {
    Require(tags->groupSize[i] >= 1 && tags->groupSize[i] <= kLumigramMaxGroupSize,
            "the elements of a group are within limits");
    grouped += tags->groupSize[i];
  }
  Require(grouped == tags->elementCount, "every kept element is in a group");
  const auto category = Block(257);
  RequireStatus(GetElementContent(document.get(), "<category>", "</category>", category.get()),
                {0, -1, -2, -3});
  return 0;
}
