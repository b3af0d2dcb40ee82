#!/bin/sh
# write_transcript.sh: runs the commands of the README's transcript of mox-xml and writes what they say now into it.
# The "linux" preset must have been built.
set -eu
cd "$(dirname "$0")/.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
MOX_WRITE_TRANSCRIPT=1 MOX_TEST_TMP="$scratch" MOX_TOOL="$PWD/../build/linux/bin/mox-xml" \
    ../build/linux/bin/tool_tests --gtest_filter='Transcript.*'
