#!/usr/bin/env bash
# Operations take about as many instructions in a large document as in a small one.
#
#   growth.sh <growth_counts>    fails when one operation takes more than 1.5 times as many
#
# Instructions are counted by callgrind, so that the result does not depend on how busy the machine is. What takes time
# in proportion to the size of the document takes 16 times as many.
set -euo pipefail

readonly program=${1:?usage: growth.sh <growth_counts>}
readonly mostAllowed=1.5
scratch=$(mktemp -d "${MOX_TEST_TMP:-/tmp}/growth.XXXXXX")
readonly scratch
trap 'rm -rf "$scratch"' EXIT

if ! valgrind --tool=callgrind --callgrind-out-file="$scratch/out" "$program" "$scratch/saved.xml" \
    >"$scratch/log" 2>&1; then
    cat "$scratch/log" >&2
    exit 1
fi

# Each file says which operation it counted, how often that was done, and how many instructions it took.
find "$scratch" -name 'out.*' -print0 | sort -zV | xargs -0 awk '
    /^desc: Trigger: Client Request: / { sub(/^desc: Trigger: Client Request: /, ""); label = $0 }
    /^(totals|summary): / && label != "" {
        split(label, part, "|")
        printf "%s\t%d\t%.0f\n", part[1], part[2], $2 / part[2]
        label = ""
    }' >"$scratch/counted"

awk -F '\t' -v most="$mostAllowed" -v expected="$(grep -c '|' "$scratch/log")" '
    !($1 in size) { size[$1] = $2; count[$1] = $3; next }
    {
        ratio = $3 / count[$1]
        tooMany = $2 <= size[$1] || ratio > most
        printf "%-40s %6d: %7d   %6d: %7d   %.2f%s\n", $1, size[$1], count[$1], $2, $3, ratio, tooMany ? "  TOO MANY" : ""
        compared += 2
        if (tooMany) bad = 1
    }
    END {
        if (compared != expected || compared == 0) { print "compared " compared + 0 " counts, expected " expected; bad = 1 }
        exit bad
    }' "$scratch/counted"
