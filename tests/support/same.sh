# shellcheck shell=bash
# For the scripts in tests/: compares lists of lines, and counts the differences.
failures=0

# same NAME WANTED GOT: two lists of lines
same() {
  if [ "$2" = "$3" ]; then echo "PASS $1"; return; fi
  echo "FAIL $1 (< wanted, > got)" && failures=$((failures + 1))
  diff <(echo "$2") <(echo "$3")
}
