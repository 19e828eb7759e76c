// The JSON of `show --json`: an array with one object for each picture.
#ifndef LUMIGRAM_CLI_JSON_H_
#define LUMIGRAM_CLI_JSON_H_

#include <string>

#include "cli/picture_model.h"

namespace lumigram::cli {

// Returns one picture's object, an element of the array. `withBlobs` adds the bytes of the blobs,
// and of each text that is not in Java's spelling, so that the picture can be restored from it.
std::string ToJson(const std::string& path, const Picture& picture, bool withBlobs);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_JSON_H_
