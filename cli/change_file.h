// The JSON file of `set --from`: checked as a whole, before any of its changes is made.
#ifndef LUMIGRAM_CLI_CHANGE_FILE_H_
#define LUMIGRAM_CLI_CHANGE_FILE_H_

#include <stddef.h>
#include <stdint.h>

#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "cli/json_reader.h"

namespace lumigram::cli {

// Holds one object of the file in memory, and 16 bytes for each object to find pictures that come
// twice. The functions throw Failure with one line.
class ChangeFile {
 public:
  // Opens the file ("-": standard input) and checks all of it. If `eachHasPath`, each object changes
  // the picture at its path, and otherwise there must be one object, whose path does not matter.
  // Only files below the folder of the JSON (for standard input the current folder) are embedded,
  // unless `filesAnywhere`.
  ChangeFile(const std::string& path, bool filesAnywhere, bool eachHasPath);

  ChangeFile(const ChangeFile&) = delete;
  ChangeFile& operator=(const ChangeFile&) = delete;

  // The number of pictures that Next() will return.
  size_t Count() const { return count_; }

  // Returns the next object; none at the end. A picture that has two names, with the same changes
  // for both, comes under its first name only.
  std::optional<JsonEntry> Next();

 private:
  struct Place {
    uint64_t file;      // a hash of the device and inode, or of the path if there is no file
    uint64_t position;  // of the object
    bool operator<(const Place& other) const {
      return std::tie(file, position) < std::tie(other.file, other.position);
    }
  };

  void FindRepeated(std::vector<Place> places);
  void Compare(std::span<const Place> places);
  std::string PlaceOf(uint64_t position);

  JsonText text_;
  JsonReader reader_;
  size_t count_ = 0;
  std::unordered_set<uint64_t> repeated_;  // the positions of objects that need not be applied
};

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_CHANGE_FILE_H_
