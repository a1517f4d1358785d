#!/bin/sh
# Figures get into their section of a document, and nothing else of it changes.
# usage: record.sh RECORD
set -eu
record=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

document() { # SPEED-SECTION TABLE-SECTION
  printf '# Figures\n\n<!-- begin: speed -->\n\n%s\n\n<!-- end: speed -->\n\nBy hand: ä\n\n' "$1"
  printf '<!-- begin: runs -->\n\n%s\n\n<!-- end: runs -->\n' "$2"
}
table='| target | runs |
|---|---:|
| `a` | 1 |
| `ab` | 2 |'
wrong=
expect() { # WHAT FILE FILE
  if ! cmp -s "$2" "$3"; then
    echo "$1:"
    diff "$2" "$3" || true
    wrong=yes
  fi
}

# A whole section, with its origin above it; the old figures are gone, the rest stays.
document old "$table" >paper.md
printf '| work | ours |\n|---|---|\n| `\\1 & x` | 5 ms |\n' | "$record" paper.md speed
grep -Eq '^Measured on [0-9]+ [A-Z][a-z]+ [0-9]{4}, commit .+, [0-9]+ processors \(.+\), load [0-9.]+\.$' paper.md ||
  { echo "The figures do not say where they come from."; wrong=yes; }
grep -v '^Measured on ' paper.md >result.md
document '
| work | ours |
|---|---|
| `\1 & x` | 5 ms |' "$table" >wanted.md
expect "a section" wanted.md result.md

# Once more comes to the same.
cp paper.md once.md
printf '| work | ours |\n|---|---|\n| `\\1 & x` | 5 ms |\n' | "$record" paper.md speed
sed 's/^Measured on .*/Measured/' once.md >wanted.md
sed 's/^Measured on .*/Measured/' paper.md >result.md
expect "the same section again" wanted.md result.md

# Rows replace the one of the same name, and new ones come last.
document old "$table" >paper.md
echo '| `a` | 10 |' | "$record" paper.md runs --row
echo '| `c` | 3 |' | "$record" paper.md runs --row
document old '| target | runs |
|---|---:|
| `a` | 10 |
| `ab` | 2 |
| `c` | 3 |' >wanted.md
expect "rows" wanted.md paper.md

# What cannot be written leaves the document alone, and says why.
refuse() { # TEXT FIGURES NAME
  cp paper.md before.md
  if output=$(printf '%s' "$2" | "$record" paper.md "$3" 2>&1); then
    echo "$1: did not fail"
    wrong=yes
  fi
  case $output in *"$1"*) ;; *) echo "does not say \"$1\" but: $output"; wrong=yes ;; esac
  expect "$1" before.md paper.md
}
refuse 'not exactly one section nowhere' x nowhere
refuse 'nothing to write into speed' '
' speed
document old "$table" >half.md
cat half.md half.md >paper.md
refuse 'not exactly one section speed' x speed
sed '/end: speed/d' half.md >paper.md
refuse 'not exactly one section speed' x speed
[ -z "$wrong" ]
