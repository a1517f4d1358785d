#!/bin/sh
# Where something is missing that a script works on, the script fails and says what.
# usage: missing.sh SCRIPT-FOLDER
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$1" "$work/script"
cd "$work"

stub() { # FILE [LINE]; a program that does nothing else
  mkdir -p "$(dirname "$1")"
  printf '#!/bin/sh\n%s\n' "${2:-}" >"$1"
  chmod +x "$1"
}
expect() { # TEXT COMMAND…
  text=$1
  shift
  if output=$("$@" 2>&1 </dev/null); then
    echo "$* did not fail."
    wrong=yes
  fi
  case $output in
    *"$text"*) ;;
    *)
      echo "$* does not say \"$text\" but: $output"
      wrong=yes
      ;;
  esac
}
wrong=

# Nothing is installed for this.
stub script/bootstrap
for tool in xdotool openbox import convert; do stub "bin/$tool"; done
stub bin/Xvfb 'echo "no screen" >&2; exit 1'
stub bin/id 'echo 0'
stub bin/apt-get
# A machine without KALIVOR, wherever this one may have it.
for tool in bash dirname sed; do
  mkdir -p basics
  ln -s "$(command -v $tool)" "basics/$tool"
done
stub half/kalivor
stub whole/kalivor
stub whole/kalivor-cli
stub whole/kalivor-sim
env=$(command -v env)
PATH=$work/bin:$PATH

expect 'There is no package: run script/release/package first.' script/release/check-package
expect 'There is no package: run script/release/package first.' script/release/check-package nowhere.deb
expect 'There is no zip and no installer: run script/release/package-windows first.' script/release/check-windows
expect 'build/release/src/kalivor has not been built.' script/release/check-hardening
expect 'build/dev/src/kalivor has not been built.' script/release/check-desktops
expect 'half/kalivor-sim has not been built.' script/release/check-desktops half
expect 'No kalivor, kalivor-cli and kalivor-sim in build/dev: build them first.' script/screenshots
expect 'No kalivor, kalivor-cli and kalivor-sim in half: build them first.' script/screenshots half
expect 'The X server did not start: no screen' script/screenshots whole
expect 'KALIVOR ist nicht installiert.' "$env" PATH="$work/basics" bash script/demo --installed
expect 'This machine knows no place that holds' bash -c '. script/lib.sh; . script/release/tree.sh; make_tree tree'
[ -z "$wrong" ]
