// Standard output and standard error: colours, columns and a progress line on terminals, plain
// lines elsewhere.
#ifndef LUMIGRAM_CLI_CONSOLE_H_
#define LUMIGRAM_CLI_CONSOLE_H_

#include <string>
#include <string_view>
#include <vector>

#include "cli/picture_model.h"

namespace lumigram::cli {

class Console {
 public:
  // Sets a locale, because the widths of characters depend on it.
  Console();

  bool IsTerminal() const { return outIsTerminal_; }

  void Print(std::string_view text);
  // Prints one line on standard error, even if the path contains line ends.
  void Fail(const std::string& path, const Failure& failure);
  void Complain(const std::string& message);
  void Flush();

  // The progress is for a standard error that is a terminal.
  bool ShowsProgress() const { return errIsTerminal_; }
  // Shows how many pictures are done, of how many (0: unknown), after how much time.
  void Progress(size_t done, size_t total, double seconds);
  void ClearProgress();

  // Describes all metadata of a picture: in columns on a terminal, else one line for each text,
  // with the path, and tabs between the fields.
  std::string Describe(const std::string& path, const Picture& picture) const;
  // Describes the differences between two states of a picture.
  std::string DescribeChange(const std::string& path, const Picture& old,
                             const Picture& built) const;

 private:
  using Row = std::vector<std::string>;  // the kind, then the fields
  enum class Paint { kBold, kDim, kRed, kGreen };

  std::string Shown(const std::string& text) const;
  std::vector<Row> Rows(const Picture& picture) const;
  std::string Painted(Paint paint, const std::string& text) const;
  std::string Aligned(const std::vector<Row>& rows) const;

  bool outIsTerminal_;
  bool errIsTerminal_;
  bool colours_;
  bool progressShown_ = false;
};

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_CONSOLE_H_
