// The command `find`: which pictures fulfil conditions.
#ifndef LUMIGRAM_CLI_FIND_H_
#define LUMIGRAM_CLI_FIND_H_

#include <string>
#include <vector>

namespace lumigram::cli {

class Console;
struct Options;

// All conditions hold for the pictures that are found.
struct FindOptions {
  // A condition is one of these fields and a text for it.
  enum Field { kText, kLabel, kNote, kPart, kCategory, kType, kTag, kBlob, kFields };
  std::vector<std::string> texts[kFields];
  bool exact = false;  // a text is the whole text, byte for byte; else a part of it
  bool noLabel = false;
  bool noDocument = false;

  bool count = false;  // print the number of pictures instead of their paths
  bool nul = false;    // end each path with a NUL
};

// The exit statuses of `find`, which are those of grep.
enum FindStatus { kFound = 0, kFoundNone = 1, kFindFailed = 2 };

// Prints the paths of the pictures that are found. Returns the exit status.
int Find(const Options& options, Console* console);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_FIND_H_
