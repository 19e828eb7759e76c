// The metadata document: one line of text, without escaping, taken apart by exact search.
//
//   <emoji>
//     <label><name>..</name><note>..</note><part>..</part></label>
//         0 to 10 times; note and part are optional
//     <category>..</category><type>..</type>
//         each is optional
//     <tags name="NAME">CONTENT</tags>
//         0 to 100 times
//   </emoji>
#ifndef LUMIGRAM_CORE_DOCUMENT_DOCUMENT_FORMAT_H_
#define LUMIGRAM_CORE_DOCUMENT_DOCUMENT_FORMAT_H_

#include <string_view>

#include "core/base/bytes.h"
#include "core/base/text.h"
#include "lumigram.h"

namespace lumigram {

inline constexpr char kRootStart[] = "<emoji>";
inline constexpr char kRootEnd[] = "</emoji>";
inline constexpr char kLabelStart[] = "<label>";
inline constexpr char kLabelEnd[] = "</label>";
inline constexpr char kNameStart[] = "<name>";
inline constexpr char kNameEnd[] = "</name>";
inline constexpr char kNoteStart[] = "<note>";
inline constexpr char kNoteEnd[] = "</note>";
inline constexpr char kPartStart[] = "<part>";
inline constexpr char kPartEnd[] = "</part>";
inline constexpr char kCategoryStart[] = "<category>";
inline constexpr char kCategoryEnd[] = "</category>";
inline constexpr char kTypeStart[] = "<type>";
inline constexpr char kTypeEnd[] = "</type>";
inline constexpr char kTagsStart[] = "<tags name=\"";
inline constexpr char kAttributeEnd[] = "\">";
inline constexpr char kTagsEnd[] = "</tags>";

// The characters that the limit of 24 counts: printable ASCII and the lead bytes of longer ones.
// Control characters, continuation bytes and F8 to FF are free.
uint32_t CountCharacters(std::string_view text);

// The URI of a blob that the picture itself carries: this, followed by the blob's file name.
inline constexpr std::string_view kThisPicture = "file://THIS/";

// What a container stores of a blob's label, and what a label begins with that marks one of our
// blobs.
inline constexpr size_t kBlobLabelSize = 11;
inline constexpr std::string_view kBlobMark = "EMJ";

// Of the blobs that a record names: those that stay in the picture, and those whose bytes come from
// a file.
inline bool IsKept(const AppExtEntry& entry) {
  return BeginsWith(std::string_view(entry.binaryDataUri, kThisPicture.size()), kThisPicture);
}
inline bool IsNew(const AppExtEntry& entry) {
  return entry.binaryDataUri[0] != '\0' && !IsKept(entry);
}

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DOCUMENT_FORMAT_H_
