// The JSON of `show --json` and `set --from`: an array with one object for each picture.
#ifndef LUMIGRAM_CLI_JSON_H_
#define LUMIGRAM_CLI_JSON_H_

#include <string>
#include <vector>

#include "cli/changes.h"
#include "cli/picture_model.h"

namespace lumigram::cli {

// Returns one picture's object, an element of the array.
std::string ToJson(const std::string& path, const Picture& picture);

struct JsonEntry {
  std::string place;  // in the file, as a JSON pointer
  std::string path;   // empty: not given
  Changes changes;
};

// Parses a text. Throws Failure, with one line: the place, and what was expected there.
std::vector<JsonEntry> ParseJson(const std::string& text);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_JSON_H_
