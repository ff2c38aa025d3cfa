#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks the library's file: nothing in it keeps the library from being unloaded, and it does not compute with the x87
# unit.
#
#   check_library_file.sh NM READELF OBJDUMP LIBRARY
set -eu
nm=$1 readelf=$2 objdump=$3 library=$4
status=0
complain() {
    echo "$1" >&2
    status=1
}

symbols=$("$nm" -D "$library")
dynamic=$("$readelf" -dlW "$library")
echo "$symbols" | grep -q ' T ostrel_prop$' || complain "$library: no ostrel_prop"
echo "$dynamic" | grep -q SONAME || complain "$library: no SONAME"
# Each of these keeps the library from being unloaded, or is called after it has been unloaded.
echo "$symbols" | grep ' u ' && complain "Symbols unique in the process."
echo "$symbols" | grep '__cxa_thread_atexit' && complain "Variables of a thread that have destructors."
echo "$dynamic" | grep -E 'NODELETE|STATIC_TLS' && complain "Flags that keep it loaded."
# The only variable of a thread is the message of the handles, which begins as 1024 bytes of zeros.
variables=$(echo "$dynamic" | awk '$1 == "TLS" { print $5, $6 }')
[ "$variables" = "0x000000 0x000400" ] || complain "Variables of a thread: $variables"
echo "$dynamic" | grep 'GNU_STACK.*RWE' && complain "A stack that can be executed."

# The x87 unit has a rounding mode and a precision of its own, which the library does not set.
if "$objdump" -f "$library" | grep -q 'architecture: i386:x86-64'; then
    instructions=$("$objdump" -d --no-show-raw-insn "$library" | awk '/^ / { print $2 }')
    echo "$instructions" | grep -q '^mulsd$' || complain "$library: no multiplication found"
    echo "$instructions" | grep '^f[a-z]' | sort | uniq -c | grep . && complain "Instructions of the x87 unit."
fi
exit $status
