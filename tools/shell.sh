# shellcheck shell=bash
# Shared by run, check, bench/run and the scripts of tools/: sourced by bash, with the project's folder in $root.
export LC_ALL=C.UTF-8  # names and texts are UTF-8 whatever the caller's locale
logs=${root:?}/build/logs
mkdir -p "$logs"

# quietly NAME COMMAND...: runs the command with its output in a log of that name. Prints the end of the log when it fails.
quietly() {
  local log="$logs/$1.log" status=0
  shift
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if [ $status -ne 0 ]; then
    echo "failed with status $status: $*"
    tail -n 40 "$log"
    echo "(whole log: $log)"
  fi >&2
  return $status
}

# build PRESET TARGET...: configures and builds the targets.
build() {
  local preset=$1
  shift
  (cd "$root" && quietly "$preset-configure" cmake --preset "$preset" &&
    quietly "$preset-build" cmake --build --preset "$preset" --target "$@")
}
