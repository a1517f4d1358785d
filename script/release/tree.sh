# Shared by the scripts that try something in a fresh minimal Debian: making such a tree and running in it.
# It installs from where this machine installs from.

# Makes the tree. usage: make_tree FOLDER [PACKAGE,PACKAGE…]
make_tree() {
  local folder=$1 codename mirror options=()
  [ "$(id -u)" -eq 0 ] || die "Making a tree of its own needs the rights of root."
  # shellcheck source=/dev/null
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # Where there is none, grep fails.
  sources=$(apt-get indextargets --format 'deb $(SITE) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' | sort -u |
    grep " $codename" || true)
  mirror=$(awk -v "suite=$codename" '$3 == suite { print $2; exit }' <<<"$sources")
  [ -n "$mirror" ] || die "This machine knows no place that holds $codename."
  [ -z "${2:-}" ] || options+=("--include=$2")
  # The download tool of debootstrap knows proxies from the environment only.
  local proxy
  proxy=$(apt-config shell value Acquire::http::Proxy | cut -d "'" -f 2)
  [ -z "$proxy" ] || [ -n "${http_proxy:-}" ] || export http_proxy=$proxy
  debootstrap --variant=minbase "${options[@]}" "$codename" "$folder" "$mirror" >"$folder.log" 2>&1 ||
    { tail -n 20 "$folder.log" >&2; die "Making the tree failed."; }
  printf '%s\n' "$sources" >"$folder/etc/apt/sources.list"
  apt-config dump | grep -E '^Acquire::(http|https|Check-)' >"$folder/etc/apt/apt.conf.d/99outside" || true
  if [ -f /etc/ssl/certs/ca-certificates.crt ]; then
    mkdir -p "$folder/etc/ssl/certs"
    cp /etc/ssl/certs/ca-certificates.crt "$folder/etc/ssl/certs/"
  fi
  # What is there already would not count as downloaded.
  rm -rf "$folder"/var/cache/apt/archives/*.deb "$folder"/var/lib/apt/lists/*
}

# Runs a command in the tree with a clean environment. Everything that it starts ends with it, and nothing stays
# mounted. usage: in_tree FOLDER COMMAND…   (in_tree_environment: an array of NAME=VALUE to pass on)
in_tree_environment=()
in_tree() {
  local folder=$1
  shift
  local passed=(HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8)
  local name
  for name in http_proxy https_proxy no_proxy; do
    [ -z "${!name:-}" ] || passed+=("$name=${!name}")
  done
  # shellcheck disable=SC2016
  unshare --mount --pid --fork --kill-child bash -euc '
    folder=$1
    shift
    mount -t proc proc "$folder/proc"
    mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$folder/dev/pts"
    mkdir -p "$folder/dev/shm"
    mount -t tmpfs -o mode=1777 tmpfs "$folder/dev/shm"
    if [ -d /tmp/.X11-unix ]; then
      mkdir -p "$folder/tmp/.X11-unix"
      mount --bind /tmp/.X11-unix "$folder/tmp/.X11-unix"
    fi
    exec chroot "$folder" "$@"' -- "$folder" env -i "${passed[@]}" "${in_tree_environment[@]}" "$@"
}

# Now, in seconds with their thousandths.
now() { date +%s.%3N; }

# The seconds since a moment. usage: since MOMENT
since() { awk -v "from=$1" -v "to=$(now)" 'BEGIN { printf "%.1f", to - from }'; }
