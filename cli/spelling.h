// The spelling of texts: in a picture, in standard UTF-8, and on a terminal.
//
// A picture's texts are UTF-8 by convention, but a character outside the basic plane has two
// spellings: one four-byte sequence, as other programs write it, and Java's surrogate pair of two
// three-byte sequences. The tool reads both and writes Java's. The command line, JSON and the
// output are standard UTF-8.
#ifndef LUMIGRAM_CLI_SPELLING_H_
#define LUMIGRAM_CLI_SPELLING_H_

#include <string>
#include <string_view>

namespace lumigram::cli {

// Returns a stored text in standard UTF-8. Every sequence that is no character becomes U+FFFD.
std::string ToUtf8(std::string_view stored);

// Returns a stored text with each surrogate pair as one four-byte sequence, and without another
// change: for comparisons.
std::string JoinSurrogates(std::string_view stored);

// Returns a text in Java's spelling. Every sequence that is no character becomes U+FFFD.
std::string ToJava(std::string_view text);

// Whether a stored text is spelled as Java does; false for a text with bytes that are no character.
bool IsJavaSpelling(std::string_view stored);

// Returns a text that can be printed on one line of a terminal: control characters, characters that
// change the direction of writing, and bytes that are no text appear as \n, \u{202e} and \xff.
std::string Printable(std::string_view text);

// The same, with \\ for a backslash: the text can be restored.
std::string Escaped(std::string_view text);

// Returns a file name for a stored text: "_" takes the place of slashes, of a dot at the beginning, of
// bytes that are no text and of characters that Printable() escapes.
std::string FileName(std::string_view stored);

// Returns a JSON text in which no string holds characters that control a terminal or change the
// direction of writing.
std::string PrintableJson(std::string_view json);

// Returns the beginning of a text, printable, for a message; Quoted() puts it in quotes.
std::string Shortened(std::string_view text, size_t limit = 40);
std::string Quoted(std::string_view text);

// Returns the columns that a printable text takes on a terminal, where East Asian characters are
// wide. Requires setlocale(LC_CTYPE) with a UTF-8 locale.
size_t Columns(std::string_view printable);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_SPELLING_H_
