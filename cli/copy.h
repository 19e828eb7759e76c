// The command `copy`: gives pictures the metadata of others.
#ifndef LUMIGRAM_CLI_COPY_H_
#define LUMIGRAM_CLI_COPY_H_

namespace lumigram::cli {

class Console;
struct Options;

// Copies the metadata of a picture into another one, or those of a folder's pictures into the
// pictures of another folder. Returns the exit status, and may throw UsageError.
int Copy(const Options& options, Console* console);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_COPY_H_
