// Standard output and standard error: colours, columns and a progress line where they are
// terminals, plain lines where they are not.
#ifndef LUMIGRAM_TOOLS_CONSOLE_H_
#define LUMIGRAM_TOOLS_CONSOLE_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/picture_model.h"

namespace lumigram::tool {

class Console {
 public:
  // Sets the locale, for the widths of characters.
  Console();

  bool IsTerminal() const { return outIsTerminal_; }

  void Print(std::string_view text);
  // One line on standard error. Whatever the path holds, it stays one.
  void Fail(const std::string& path, const Failure& failure);
  void Complain(const std::string& message);
  // Shows how far the work is, when standard error is a terminal.
  void Progress(size_t done, size_t total);
  void ClearProgress();

  // All that a picture carries: in columns on a terminal, else one line a text, with the path and
  // tabs between the fields.
  std::string Describe(const std::string& path, const Picture& picture) const;
  // What differs between two states of a picture.
  std::string DescribeChange(const std::string& path, const Picture& old,
                             const Picture& built) const;

 private:
  using Row = std::vector<std::string>;  // what it is, then its fields
  enum class Paint { kBold, kDim, kRed, kGreen };

  static std::vector<Row> Rows(const Picture& picture);
  std::string Painted(Paint paint, const std::string& text) const;
  std::string Aligned(const std::vector<Row>& rows) const;

  bool outIsTerminal_;
  bool errIsTerminal_;
  bool colours_;
  bool progressShown_ = false;
};

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_CONSOLE_H_
