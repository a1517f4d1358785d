# Shared by the scripts: where the project is, and how to speak.
set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project"

say() { printf '%s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

# Starts an X server without a screen, adds it to the array `children` and makes it DISPLAY.
# usage: start_x_server FOLDER WIDTHxHEIGHT [OPTION…]   (FOLDER takes what it has to say)
start_x_server() {
  local folder=$1 size=$2 number
  shift 2
  mkfifo "$folder/display"
  Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp "$@" 3>"$folder/display" 2>"$folder/x-server.log" &
  children+=($!)
  # It names its number once it can be used, and none when it ends.
  number=$(head -n 1 "$folder/display")
  rm "$folder/display"
  [ -n "$number" ] || die "The X server did not start: $(cat "$folder/x-server.log")"
  export DISPLAY=:$number
}

# Prints the comment at the top of the calling script and ends, when its first argument asks for help.
help_if_asked() {
  case "${1:-}" in
    -h | --help) sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0"; exit 0 ;;
  esac
}
