// The names of parts of speech. Java uses numbers for them, documents store Japanese names.
#ifndef LUMIGRAM_CORE_DOCUMENT_PART_OF_SPEECH_H_
#define LUMIGRAM_CORE_DOCUMENT_PART_OF_SPEECH_H_

#include <stdint.h>

#include <string_view>

namespace lumigram {

// The English name of a part of speech, 1 to 21, in lower case with hyphens. Empty for every other
// number.
const char* EnglishPartName(int32_t number);

// The number of a part of speech by its English or its stored name; 0 for any other text.
int32_t FindPart(std::string_view name);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_PART_OF_SPEECH_H_
