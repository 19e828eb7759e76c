#!/usr/bin/env bash
# Checks the built library: its dependencies, exports and layout. Usage: tests/library_check.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
library=$1/libLumigramJniNative.so
[ -f "$library" ] || { echo "FAIL there is no $library"; exit 1; }
. "$root/tests/support/same.sh"

dynamic=$(readelf -dW "$library") segments=$(readelf -lW "$library") symbols=$(readelf --dyn-syms -W "$library")

same "needs only libc" "libc" "$(sed -nE 's/.*\(NEEDED\).*\[(.*)\.so(\.6)?\]/\1/p' <<<"$dynamic")"

# The library runs with each glibc since the one that first had the machine or, on ARM, functions for 64-bit file positions.
case $(readelf -h "$library") in *"Machine: "*" ARM"*) oldest=2.28 ;; *) oldest=2.17 ;; esac
newer=$(sed -nE 's/.* UND ([^ ]+)@GLIBC_([0-9.]+).*/\2 \1/p' <<<"$symbols" | while read -r version name; do
  printf '%s\n' "$version" "$oldest" | sort -CV || echo "$name $version"
done)
same "needs no symbol above GLIBC_$oldest" "" "$newer"

# The GNU C library has other names for functions with 64-bit file positions and with checks of sizes; Clang uses bcmp, and ARM
# has names for a few memory functions. A build for Android has other code in place of __fwritable and syscall.
used=$(awk '$5 == "GLOBAL" && $7 == "UND" { print $8 }' <<<"$symbols" |
  sed -E 's/@.*//; s/64$//; s/^__errno_location$/__errno/; s/^bcmp$/memcmp/; s/^__(.*)_chk$/\1/; /^__aeabi_mem/d; /^(__fwritable|syscall)$/d')
same "uses only what Android has had since level 21" "" "$(grep -vxFf "$root/cmake/android-libc.txt" <<<"$used")"

# The exports are exactly the functions of the header and the native methods of the Java classes.
functions=$(sed -nE 's/^LUMIGRAM_API .*[ *]([A-Z][A-Za-z0-9]*)\(.*/\1/p' "$root/include/lumigram.h")
natives=$(cd "$root/java/src/main/java/lumigram/jni" && grep -E ' native .*\(' ./*.java |
  sed -E 's/^.*\/(.*)\.java:.* ([a-z][A-Za-z0-9]*)\(.*/Java_lumigram_jni_\1_\2/')
exported=$(awk '$5 != "LOCAL" && $7 != "UND" && $8 != "" && $8 != "Name" { print $8 }' <<<"$symbols")
same "exports the header's functions and the native methods" \
  "$(printf '%s\n' "$functions" "$natives" | sort)" "$(sort <<<"$exported")"

same "no text relocations" "" "$(grep -E 'TEXTREL' <<<"$dynamic")"
same "stack not executable" "RW" "$(awk '$1 == "GNU_STACK" { print $7 }' <<<"$segments")"
same "segments for 16 KiB pages" "0x4000" "$(awk '$1 == "LOAD" { print $NF }' <<<"$segments" | sort -u)"
same "no segment writable and executable" "" "$(grep -E '^ *LOAD .*RWE' <<<"$segments")"
same "relocations read-only from the start" "GNU_RELRO BIND_NOW" \
  "$(grep -ow GNU_RELRO <<<"$segments" | head -n 1) $(grep -owE 'BIND_NOW' <<<"$dynamic" | head -n 1)"
[ $failures -eq 0 ]
