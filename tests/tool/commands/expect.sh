# Sourced by the tests of the program: helpers for expectations. $tool is the program, $work a
# temporary directory.
set -euo pipefail

work=$(mktemp -d)
# A failed test leaves no process behind.
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# expect_exit CODE COMMAND...: leaves its output in $work/out and $work/err.
expect_exit() {
  local expected=$1 code=0
  shift
  "$@" >"$work/out" 2>"$work/err" || code=$?
  [ "$code" -eq "$expected" ] || {
    cat "$work/out" "$work/err" >&2
    fail "exit code $code, not $expected: $*"
  }
}

# until_said TEXT FILE: waits until a process prints the text. Each process needs a file of its own:
# the text of an earlier one would end the wait.
until_said() {
  for _ in $(seq 200); do
    ! grep -qF -- "$1" "$2" || return 0
    sleep 0.05
  done
  cat "$2" >&2
  fail "never said: $1"
}

# use_middleware LIBZARNIMESH: from now on the program uses it, in a directory of this test.
use_middleware() {
  export MESH_L2VPN_MIDDLEWARE=$1 ZARNIMESH_RUNTIME_DIR=$work/run
  mkdir -m 700 "$ZARNIMESH_RUNTIME_DIR"
}

expect_text() {
  grep -qF -- "$2" "$1" || {
    cat "$1" >&2
    fail "'$2' is not in the ${1##*/}put above"
  }
}

# last_table CAPTURE: where the header of its last table begins.
last_table() {
  LC_ALL=C grep -obUa MESH "$1" | tail -1 | cut -d: -f1
}
