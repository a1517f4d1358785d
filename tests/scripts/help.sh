#!/bin/sh
# A script explains itself when it is asked to, and does nothing else.
# usage: help.sh SCRIPT
set -eu
name=script/${1##*/script/}
text=$("$1" --help)
printf '%s\n' "$text" | grep -q "^usage: $name" || { printf '%s\n' "$text"; echo "$1 --help names no usage of $name."; exit 1; }
[ "$("$1" -h)" = "$text" ] || { echo "$1 -h differs from --help."; exit 1; }
