#!/usr/bin/env bash
# Gathers what is to be translated. Without an argument it writes it into translations/*.ts, where new
# texts are then marked as unfinished; with --check it only says whether anything is missing there.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
gather=(/usr/lib/qt6/bin/lupdate -silent -no-obsolete -locations none "$root/src" -ts)

if [[ "${1:-}" != --check ]]; then
    "${gather[@]}" "$root"/translations/*.ts
    exit
fi

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
for file in "$root"/translations/*.ts; do
    copy="$scratch/$(basename "$file")"
    cp "$file" "$copy"
    "${gather[@]}" "$copy"
    if ! diff -u "$file" "$copy" || grep -n 'type="unfinished"' "$copy"; then
        echo "$file lacks texts: run tools/translations.sh and translate what is unfinished."
        exit 1
    fi
done
