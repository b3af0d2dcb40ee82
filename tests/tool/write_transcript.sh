#!/bin/sh
# write_transcript.sh: updates the transcript of mox-xml in the README: runs its commands and replaces their output.
# Build the preset "linux" first.
set -eu
cd "$(dirname "$0")/.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
MOX_WRITE_TRANSCRIPT=1 MOX_TEST_TMP="$scratch" MOX_TOOL="$PWD/../build/linux/bin/mox-xml" \
    ../build/linux/bin/tool_tests --gtest_filter='Transcript.*'
