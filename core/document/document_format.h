// The metadata document: text without escaping, in which tags are found by exact search.
//
//   <emoji>
//     <label>                            0 to 10 times:
//       <name>..</name>
//       <note>..</note>                  optional
//       <part>..</part>                  optional
//     </label>
//     <category>..</category>            optional
//     <type>..</type>                    optional
//     <tags name="NAME">CONTENT</tags>   0 to 100 times
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

// Counts characters for the limit of 24: printable ASCII, and the lead bytes of longer characters.
// Control characters, continuation bytes and F8 to FF are not counted.
uint32_t CountCharacters(std::string_view text);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DOCUMENT_FORMAT_H_
