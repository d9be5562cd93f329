#!/bin/sh
# Fails unless the program named as argument is position independent, binds all functions at its
# start into tables that are read-only then, and guards its stack and its copies.
set -eu
program="$1"
status=0

# expect WHAT PATTERN OPTIONS...: readelf with these options prints a line with the pattern.
expect() {
  what="$1" pattern="$2"
  shift 2
  readelf --wide "$@" "$program" | grep -qE "$pattern" && return
  echo "$program: $what is missing" >&2
  status=1
}

expect "position-independent code" 'Type: +DYN' --file-header
expect "binding at the start" 'FLAGS.*(BIND_NOW|NOW)' --dynamic
expect "the mark of an independent program" 'FLAGS_1.*PIE' --dynamic
expect "read-only relocation" 'GNU_RELRO' --program-headers
expect "the guard of the stack" '__stack_chk_fail' --dyn-syms
expect "a checked function of the C library" '__[a-z]+_chk(@| |$)' --dyn-syms
if readelf --wide --program-headers "$program" | grep -qE 'GNU_STACK.* RWE '; then
  echo "$program: the stack may hold code" >&2
  status=1
fi
exit "$status"
