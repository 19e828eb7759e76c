# shellcheck shell=bash
# Shared by run, check, bench/run and the scripts of tools/: sourced by bash, with the project's folder in $root.
export LC_ALL=C.UTF-8  # names and texts are UTF-8 whatever the caller's locale
logs=${root:?}/build/logs
script=$(realpath "$0") arguments=("$@")

# Under sudo, in a folder of the user who called it. That user could not write into a build/ of root's.
is_sudo_at_home() { [ "$(id -u)" -eq 0 ] && [ "${SUDO_UID:-0}" -ne 0 ] && [ "$(stat -c %u "$root")" -eq "$SUDO_UID" ]; }

die() {
  echo "${script##*/}: $*" >&2
  exit 1
}

if ! is_sudo_at_home; then
  { mkdir -p "$logs" && [ -w "$logs" ]; } || die "cannot write into $logs. If it is root's: sudo chown -R \$USER '$root/build'"
fi

# packages GROUP...: installs what is missing. Under sudo, the script then starts again as the user who called it.
packages() {
  "$root/tools/install-packages" "$@" || return 1
  ! is_sudo_at_home || exec sudo -H -u "#$SUDO_UID" -g "#$SUDO_GID" -- "$script" "${arguments[@]}"
}

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

# was_moved FOLDER: whether the build in the folder was configured for a project at another place. CMake refuses such a build.
was_moved() {
  local source
  source=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$1/CMakeCache.txt" 2>/dev/null)
  [ -n "$source" ] && ! [ "$source" -ef "$root" ]
}

# build PRESET TARGET...: configures and builds the targets.
build() {
  local preset=$1 folder=$root/build/$1
  shift
  ! is_sudo_at_home || die "call it without sudo: build/ would become root's"
  if was_moved "$folder"; then rm -rf "$folder"; fi
  [ ! -e "$folder" ] || [ -w "$folder" ] || die "cannot write into $folder. If it is root's: sudo chown -R \$USER '$root/build'"
  (cd "$root" && quietly "$preset-configure" cmake --preset "$preset" &&
    quietly "$preset-build" cmake --build --preset "$preset" --target "$@")
}
