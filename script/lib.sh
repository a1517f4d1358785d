# Shared by the scripts: where the project is, and how to speak.
set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project"

say() { printf '%s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

# Prints the comment at the top of the calling script and ends, when its first argument asks for help.
help_if_asked() {
  case "${1:-}" in
    -h | --help) sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0"; exit 0 ;;
  esac
}
