// How texts are spelled: in a picture, in UTF-8 proper, and on a terminal.
//
// A picture's texts are UTF-8 by convention, but a character outside the basic plane has two
// spellings: one four-byte sequence, as other programs write it, and Java's surrogate pair, two
// three-byte sequences. Here both are read, Java's is written, and everything in between (the
// command line, JSON, what is shown) is UTF-8 proper.
#ifndef LUMIGRAM_TOOLS_SPELLING_H_
#define LUMIGRAM_TOOLS_SPELLING_H_

#include <string>
#include <string_view>

namespace lumigram::tool {

// A stored text in UTF-8 proper. Every byte that belongs to no character becomes U+FFFD.
std::string ToUtf8(std::string_view stored);

// A text as Java delivers it.
std::string ToJava(std::string_view text);

// Whether every byte belongs to a character.
bool IsValid(std::string_view text);

// A text that can be printed on one line of a terminal: control characters, those that turn the
// direction of writing, and bytes that are no text appear as \n, \u{202e} and \xff.
std::string Printable(std::string_view text);

// The beginning of a text, printable and between quotes, for a message.
std::string Quoted(std::string_view text);

// The columns that a printable text takes on a terminal, where East Asian characters are wide.
// Wants setlocale(LC_CTYPE) with a UTF-8 locale.
size_t Columns(std::string_view printable);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_SPELLING_H_
