// The command `extract --all`: writes the blobs of pictures into a folder.
#ifndef LUMIGRAM_CLI_EXTRACT_ALL_H_
#define LUMIGRAM_CLI_EXTRACT_ALL_H_

namespace lumigram::cli {

class Console;
struct Options;

// Writes each blob to a file of its name, in a folder for each picture. Returns the exit status, and
// may throw UsageError.
int ExtractAll(const Options& options, Console* console);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_EXTRACT_ALL_H_
