#!/usr/bin/env bash
# Checks the installed files, the package, and the C example built with them. Usage: tests/install_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "$1") work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
. "$root/tests/support/same.sh"

# The installed tree must work after it was moved.
DESTDIR=$work/stage cmake --install "$build" --prefix /opt/lumigram
mv "$work/stage/opt/lumigram" "${tree:=$work/a tree}"
lib=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:[A-Z]*=//p' "$build/CMakeCache.txt")
wanted=(include/lumigram.h share/java/lumigram.jar "$lib"/{libLumigramJniNative.so,pkgconfig/lumigram.pc}
  "$lib"/cmake/lumigram/lumigram-config{,-version,-release}.cmake)
[ ! -x "$build/lumigram" ] || wanted+=(bin/lumigram share/{bash-completion/completions/lumigram,man/man1/lumigram.1})
files=$(printf '%s\n' "${wanted[@]}" | sort)
same "installed files" "$files" "$(cd "$tree" && find . -type f | cut -c 3- | sort)"

# Android has had java.nio.file only since API level 26; one class needs it, and one that is not used there.
same "what needs java.nio.file" $'PicturePaths.class\njni/BundledLibrary.class' \
  "$(cd "$build/java-main/lumigram" && grep -rl java/nio/file . | cut -c 3- | sort)"

export PKG_CONFIG_PATH=$tree/$lib/pkgconfig LD_LIBRARY_PATH=$tree/$lib
flags=() && eval "flags=($(pkg-config --cflags --libs lumigram))"  # its spaces are quoted for a shell
cc -Wall -Wextra -Wpedantic -Werror -std=c11 "$root/examples/c/tag_picture.c" -o "$work/by-pkg-config" "${flags[@]}"
cmake -S "$root/examples/c" -B "$work/c" -DCMAKE_PREFIX_PATH="$tree" && cmake --build "$work/c" &&
  mv "$work/c/tag_picture" "$work/by-find-package"
"$work/c/tag_bytes" <"$root/samples/heart.png" >"$work/bytes.png"
same "writes a picture in memory" $'ハート (愛情)\nlove ❤ ()' "$("$work/by-pkg-config" "$work/bytes.png")"
for program in "$work"/by-{find-package,pkg-config}; do
  cp "$root"/samples/{heart,cut}.png "$work"
  "$program" "$work/heart.png" seal 'a "<" note' >"$work/before"
  same "reads and writes: ${program##*/}" $'ハート (愛情)\nlove ❤ ()\nseal (a "<" note)\n55 bytes more' \
    "$("$program" "$work/heart.png"; echo $(($(stat -c %s "$work/heart.png") - $(stat -c %s "$root/samples/heart.png"))) bytes more)"
  same "reports a failure: ${program##*/}" "$work/cut.png: damaged or truncated picture (-30) 1" \
    "$("$program" "$work/cut.png" 2>&1) $?"
done

# The words for a status in Java must be those of C. One list has them for both.
words=$(cat "$root/tests/status_words.txt")
java=$(tr '\n' ' ' <"$root/java/src/main/java/lumigram/jni/LumigramStatus.java" |
  grep -oE 'case [-0-9]+: +return "[^"]*"' | sed -E 's/case (.*): +return "(.*)"/\1 \2/')
same "the words of LumigramStatus" "0 ok" "$(grep -vxFe "$words" <<<"$java"; grep '^0 ' <<<"$java")"

# The typed API has the limits of texts and counts under the names that they have in the header.
limits=$(grep -oE 'kLumigramMax[A-Za-z]+ = [0-9]+' "$root/include/lumigram.h" | grep -vE 'Pixels|PictureBytes|DocumentBytes' |
  sed -E 's/kLumigram//; s/([a-z])([A-Z])/\1_\2/g; s/.*/\U&/' | sort)
same "the limits of WriteCheck" "$limits" \
  "$(grep -oE 'MAX_[A-Z_]+ = [0-9]+' "$root/java/src/main/java/lumigram/WriteCheck.java" | grep -v BLOB | sort)"

# Pictures store the names of the parts of speech: one list has them for C, Java and the manual page.
parts=$(cat "$root/tests/parts_of_speech.txt")
same "the parts of speech of Java" "$parts" "$(sed -nE 's/^  ([A-Z_]+)\("(.+)"\)[,;]$/\2 \1/p' \
  "$root/java/src/main/java/lumigram/PartOfSpeech.java" | tr 'A-Z_' 'a-z-' | awk '{ print NR, $0 }')"
same "the parts of speech of the manual page" "$parts" \
  "$(sed -e '/^\.SH PARTS/,/^\.fi/!d' -e 's/\\-/-/g' "$root/docs/lumigram.1" | awk '/^ *[0-9]/ { print $1, $3, $2 }')"

# The README's example runs as it is there.
cd "$work" && mkdir build && ln -s "$build" build/release && cp "$root/samples/heart.png" picture.png
awk '/^```/ { if (inside) exit; inside = 1; next } inside' "$root/README.md" >Try.java
same "the README's example" $'ハート\nlove ❤' "$(bash -c "$(grep -m 1 '^ *java ' "$root/README.md")" 2>&1)"

cpack --config "$build/CPackConfig.cmake" -B "$work" && deb=$(echo "$work"/*.deb)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:[A-Z]*=//p' "$build/CMakeCache.txt")
same "the package" "lumigram_${version}_$(dpkg --print-architecture).deb needs libc6" \
  "${deb##*/} needs $(dpkg-deb -f "$deb" Depends | grep -ow libc6)"
files+=$'\n'$(printf 'share/doc/lumigram/%s\n' changelog.gz copyright lumigram.spdx)
same "packed files" "$(sort <<<"${files/lumigram.1/lumigram.1.gz}")" "$(dpkg-deb -x "$deb" "$work/root" && cd "$work/root/usr" && find . -type f | cut -c 3- | sort)"
[ $failures -eq 0 ]
