#!/bin/sh
# SPDX-License-Identifier: MIT
# Compares the binary interface of the C functions, their types included, with that of the last release. Functions may be
# new; none may be gone or changed, since programs that were built with the last release would break.
#   binary_interface.sh check  LIBRARY DESCRIPTION                   the library needs debug information
#   binary_interface.sh update LIBRARY DESCRIPTION HEADER_FOLDER     writes the description, which a release does
set -eu
action=$1 library=$2 description=$3 headers=${4:-}
suppressions=$(dirname "$0")/binary_interface.suppressions
if [ "$action" = update ]; then
    # Types that no header has, and sources without a function of the interface, are left out.
    abidw --suppressions "$suppressions" --headers-dir "$headers" --drop-private-types --exported-interfaces-only \
        --no-corpus-path --no-comp-dir-path --no-show-locs --type-id-style hash --no-elf-needed "$library" |
        sed '/<abi-instr /{N;/\n *<\/abi-instr>/d}' > "$description"
fi
# The description must have what it is about, so that the comparison cannot be one of nothing.
for part in "function-decl name='ostrel_prop'" "class-decl name='ostrel_host'" "class-decl name='ostrel_state'"; do
    grep -qF "$part" "$description" || { echo "$description has no $part"; exit 1; }
done
abidiff --suppressions "$suppressions" --harmless --no-added-syms "$description" "$library" || {
    echo "Programs of the last release would break."
    exit 1
}
abidiff --suppressions "$suppressions" --stat "$description" "$library" || true
