// Reads the JSON of `set --from`, one object at a time.
#ifndef LUMIGRAM_CLI_JSON_READER_H_
#define LUMIGRAM_CLI_JSON_READER_H_

#include <stdint.h>

#include <optional>
#include <string>

#include "cli/changes.h"
#include "cli/json_text.h"

namespace lumigram::cli {

struct JsonEntry {
  std::string place;      // in the file, as a JSON pointer
  uint64_t position = 0;  // in bytes
  std::string path;       // of the picture; empty: not given
  Changes changes;
};

// Every function throws Failure with one line for a text that is not as documented: its place, what
// was expected there, and what was found.
class JsonReader {
 public:
  // Files to embed are refused unless they are below the folder; an empty folder allows all. Does
  // not own the text.
  JsonReader(JsonText* text, std::string folder) : text_(*text), folder_(std::move(folder)) {}

  // Reads the next object of the array, or the only one; none at the end.
  std::optional<JsonEntry> Next();
  // Reads the object at the position of an earlier entry, without its place in the array.
  JsonEntry ReadAt(uint64_t position);
  // The next object will be the first one again.
  void Rewind() { state_ = kAtStart; }

 private:
  enum State { kAtStart, kInArray, kAtEnd };

  void SkipSpace();
  bool Skip(char byte);
  [[noreturn]] void Expected(const std::string& what);
  void RequireEnd();
  bool Begin();
  JsonEntry ReadEntry(std::string place);

  JsonText& text_;
  const std::string folder_;
  State state_ = kAtStart;
  bool isArray_ = false;
  size_t index_ = 0;
  uint64_t next_ = 0;  // where the next object begins, or the end
};

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_JSON_READER_H_
