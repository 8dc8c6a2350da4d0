#!/usr/bin/env bash
# A program that a document shows in full is the example that it names: the code block behind a line
# that ends with "(../examples/NAME):".
#
#   shown_programs.sh SOURCE_DIRECTORY
set -euo pipefail
cd "$1/docs"

shown=$(grep -noE '\(\.\./examples/[a-z_.]+\):$' ./*.md)
while IFS=: read -r document line link _; do
  example=$(tr -d '()' <<<"$link")
  diff "$example" <(tail -n "+$((line + 1))" "$document" | sed -n '/^```[a-z]/,/^```$/{/^```$/q;/^```/!p}') || {
    echo "FAILED: docs/$document does not show $example"
    exit 1
  }
done <<<"$shown"
echo "$(wc -l <<<"$shown") programs"
