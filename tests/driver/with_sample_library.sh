#!/usr/bin/env bash
# Runs a program in the environment of a sample library: with_sample_library.sh MAKER PROGRAM
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
environment=$("$1" "$folder")
eval "$environment"
"$2"
