#!/usr/bin/env bash
# A trace line asks three things of the system, a log that cannot be opened two, and nothing else.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work" "$ZACERT_LOG"' EXIT
cd "$work"

cat >program.c <<'EOF'
#include <unistd.h>
#include <zacert.h>

int main(void) {
    getppid(); /* the marks between which the calls are counted */
    for (int i = 0; i < 50; ++i) { ZI_InitAnybuf(NULL); }
    return getppid() == 0;
}
EOF
cc -I "$ZACERT_SOURCE_DIR/include" program.c "$ZACERT_LIB" -Wl,-rpath,"$(dirname "$ZACERT_LIB")" -o program

# The system calls between the marks, each name once with its number, and their arguments in "calls".
calls() {
    strace -f -o all ./program
    sed '1,/getppid/d; /getppid/,$d' all | sed -E 's/^[0-9]+ +//' >calls
    cut -d'(' -f1 calls | uniq | paste -sd' ' | sed -E 's/^((openat write close ?)+)$/lines/'
}

expect() {
    [[ $2 == "$3" ]] || { echo "$1: expected \"$3\", found \"$2\"" >&2; head calls >&2; exit 1; }
}

rm -rf "$ZACERT_LOG"
expect "shape" "$(calls)" lines
expect "system calls" "$(wc -l <calls)" 300
flags='O_WRONLY|O_CREAT|O_APPEND|O_NOFOLLOW|O_CLOEXEC, 0644'
expect "opened" "$(grep -cF "openat(AT_FDCWD, \"$ZACERT_LOG\", $flags)" calls)" 100
expect "lines" "$(grep -c '^File .\\src\\za_low; Line [0-9]* # ======>ZI_InitAnybuf \(Begin\|End\)$' "$ZACERT_LOG")" 100

rm "$ZACERT_LOG" && mkdir "$ZACERT_LOG"
expect "shape without a log" "$(calls)" openat
expect "system calls without a log" "$(wc -l <calls)" 200
