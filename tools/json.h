// The JSON of `show --json` and `set --from`: an array of objects, one a picture.
#ifndef LUMIGRAM_TOOLS_JSON_H_
#define LUMIGRAM_TOOLS_JSON_H_

#include <string>
#include <vector>

#include "tools/changes.h"
#include "tools/picture_model.h"

namespace lumigram::tool {

// One picture's object, indented to stand in the array.
std::string ToJson(const std::string& path, const Picture& picture);

struct JsonEntry {
  std::string place;  // in the file, as a JSON pointer
  std::string path;   // empty: not given
  Changes changes;
};

// Takes a text apart. Throws Failure, with one line that says the place and what was expected.
std::vector<JsonEntry> ParseJson(const std::string& text);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_JSON_H_
