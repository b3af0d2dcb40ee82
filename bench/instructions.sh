#!/usr/bin/env bash
# Counts the instructions of a fixed list of operations and compares them with the recorded table.
#
#   instructions.sh <instruction_ops>            fails when an operation needs more than 1.10 times its count
#   instructions.sh <instruction_ops> --record   writes the table anew
#
# The counts hold for one compiler and one C library; they do not depend on how busy the machine is.
set -euo pipefail

readonly program=${1:?usage: instructions.sh <instruction_ops> [--record]}
readonly mode=${2:-}
readonly mostAllowed=1.10
table="$(dirname "${BASH_SOURCE[0]}")/instructions.txt"
readonly table
scratch=$(mktemp -d)
readonly scratch
trap 'rm -rf "$scratch"' EXIT

if ! valgrind --tool=callgrind --callgrind-out-file="$scratch/out" "$program" >"$scratch/log" 2>&1; then
    cat "$scratch/log" >&2
    exit 1
fi

# Each file says which operation it counted, how often that was done, and how many instructions it took.
find "$scratch" -name 'out.*' -print0 | sort -zV | xargs -0 awk '
    /^desc: Trigger: Client Request: / { sub(/^desc: Trigger: Client Request: /, ""); label = $0 }
    /^(totals|summary): / && label != "" {
        split(label, part, "|")
        printf "%s\t%.0f\n", part[1], $2 / part[2]
        label = ""
    }' >"$scratch/counted"

if [ "$(wc -l <"$scratch/counted")" -ne "$(grep -c '|' "$scratch/log")" ]; then
    echo "instructions.sh: callgrind counted other operations than the program did" >&2
    exit 1
fi

if [ "$mode" = --record ]; then
    {
        echo "# Instructions per operation, from instructions.sh --record"
        echo "# $(c++ --version | head -n 1)"
        cat "$scratch/counted"
    } >"$table"
    cat "$table"
    exit 0
fi

awk -F '\t' -v most="$mostAllowed" '
    FNR == NR { if ($0 !~ /^#/) { recorded[$1] = $2; ++missing } next }
    !($1 in recorded) { printf "%-50s %12d            not recorded\n", $1, $2; bad = 1; next }
    {
        ratio = $2 / recorded[$1]
        printf "%-50s %12d %12d %6.3f%s\n", $1, $2, recorded[$1], ratio, (ratio > most ? "  TOO MANY" : ratio < 1 / most ? "  fewer: record anew" : "")
        if (ratio > most) bad = 1
        --missing
    }
    END {
        if (missing != 0) print missing " recorded operations were not counted"
        exit bad || missing != 0
    }' "$table" "$scratch/counted"
