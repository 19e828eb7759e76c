// The JSON of `show --json`: an array with one object for each picture.
#ifndef LUMIGRAM_CLI_JSON_H_
#define LUMIGRAM_CLI_JSON_H_

#include <string>

#include "cli/picture_model.h"

namespace lumigram::cli {

// Returns one picture's object, an element of the array.
std::string ToJson(const std::string& path, const Picture& picture);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_JSON_H_
