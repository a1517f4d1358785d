#!/bin/sh
# Compiles for Windows what needs no widgets, against the toolkit's headers of this system.
# usage: windows_compiles.sh SOURCE-FOLDER HEADERS-OF-THE-TOOLKIT
# Exit status 77: there is no compiler for Windows here.
set -eu
compiler=x86_64-w64-mingw32-g++-posix
command -v "$compiler" >/dev/null || {
  echo "There is no $compiler here (package g++-mingw-w64-x86-64-posix)."
  exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$1"
options="-std=c++20 -Wall -Wextra -Wconversion -Wshadow -Werror -DKALIVOR_VERSION=\"0\" -DQT_NO_KEYWORDS
  -DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII -DQT_NO_FOREACH -I. -isystem$2 -isystem$2/QtCore -isystem$2/QtNetwork
  -isystem$2/QtSql"
# What all of them include, read once.
printf '#include <%s>\n' QByteArray QHash QList QString QStringList functional memory optional vector \
  core/Core.h history/Store.h platform/FileSystem.h >"$work/common.h"
# shellcheck disable=SC2086
"$compiler" $options -x c++-header "$work/common.h" -o "$work/common.h.gch"
for folder in platform platform/plain platform/win32 platform/net base comm core check diagnosis commands history history/server print/pages cli kalivor sim; do
  find "$folder" -maxdepth 1 -name '*.cpp'
done |
  # The window, painted pages, what is for POSIX alone, and what needs the header of another library.
  grep -vxE 'kalivor/main.cpp|cli/(Cli|main).cpp|sim/(PosixHost|PtyLine).cpp|platform/net/(ComPort|PosixSocketCalls).cpp|history/server/(Connection|LibPq).cpp' |
  # shellcheck disable=SC2086
  xargs -P 2 -n 1 "$compiler" $options -include "$work/common.h" -fsyntax-only
