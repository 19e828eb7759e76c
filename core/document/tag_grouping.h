// Decides which tag elements of a document a batch read delivers: of the first 100, those with one
// of the first ten names, ten of each.
#ifndef LUMIGRAM_CORE_DOCUMENT_TAG_GROUPING_H_
#define LUMIGRAM_CORE_DOCUMENT_TAG_GROUPING_H_

#include <stdint.h>

#include <string_view>

#include "core/base/bytes.h"
#include "lumigram.h"

namespace lumigram {

class TagGrouping {
 public:
  enum class Fate { kStartsGroup, kJoinsGroup, kNameTooMany, kElementTooMany };

  // Adds the next element, whose name must last as long as the grouping. An element joins the
  // first group whose name begins with its own: "ab" joins "abc", and the empty name joins the
  // first group.
  Fate Add(std::string_view name) {
    for (group_ = 0; group_ < count_; ++group_) {
      if (!BeginsWith(names_[group_], name)) continue;
      if (sizes_[group_] == kLumigramMaxGroupSize) return Fate::kElementTooMany;
      ++sizes_[group_];
      return Fate::kJoinsGroup;
    }
    if (count_ == kLumigramMaxTagGroups) return Fate::kNameTooMany;
    names_[count_] = name;
    sizes_[count_++] = 1;
    return Fate::kStartsGroup;
  }

  // The group of the element that was added last, if it is kept.
  int32_t Group() const { return group_; }
  std::string_view GroupName() const { return names_[group_]; }

 private:
  std::string_view names_[kLumigramMaxTagGroups];
  int32_t sizes_[kLumigramMaxTagGroups] = {};
  int32_t count_ = 0;
  int32_t group_ = 0;
};

inline bool IsKept(TagGrouping::Fate fate) {
  return fate == TagGrouping::Fate::kStartsGroup || fate == TagGrouping::Fate::kJoinsGroup;
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_TAG_GROUPING_H_
