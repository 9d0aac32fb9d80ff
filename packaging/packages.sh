# Sourced by every script that builds or tests: names the Debian packages that each purpose needs, installs those that
# are missing, quietly, configures a build and builds it.
# shellcheck shell=bash disable=SC2034

# A|B: either will do; a release may have one name alone.
build_packages=(g++ cmake ninja-build pkg-config qt6-base-dev libsqlite3-dev libcurl4-openssl-dev libssl-dev libxcb1-dev
  libxcb-shape0-dev libxcb-xfixes0-dev libarchive-dev libgl-dev hwdata fonts-dejavu-core)
run_packages=('p7zip-full|7zip' qt6-wayland)
display_packages=(xvfb openbox xdotool x11-apps imagemagick)
# To build the Debian package.
package_packages=(dpkg-dev gzip)
# For clean systems, and to test the package there.
clean_root_packages=(mmdebstrap debian-archive-keyring ccache)
package_test_packages=("${clean_root_packages[@]}" lintian desktop-file-utils appstream groff x11-utils python3)
test_packages=(openssl libgtest-dev libgmock-dev nginx-light php-fpm xclip sqlite3 strace mdbtools xz-utils)
# To boot emulated PCs.
machine_packages=(qemu-system-x86 seabios ipxe-qemu ovmf swtpm mmdebstrap genext2fs e2fsprogs python3)
# The desktops that tests/end_to_end/desktops goes through, and what it looks at them with.
desktop_packages=(xfwm4 kwin-x11 metacity marco mate-settings-daemon-common mutter icewm i3-wm weston sway kwin-wayland
  xwayland xserver-xorg-core xserver-xorg-video-dummy picom tint2 wl-clipboard x11-utils x11-xserver-utils dbus-daemon locales)
bench_packages=(libbenchmark-dev python3 xvfb openbox xdotool lshw hwinfo pciutils hardinfo curl)

# For the sanitizer build with the fuzzers.
fuzz_packages=(clang lld llvm 'libclang-rt-dev|libclang-rt-14-dev')

is_installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

# missing_packages NAME...: sets $missing; of several names the first that this release has.
missing_packages() {
  local wanted name chosen
  missing=()
  for wanted in "$@"; do
    chosen=
    for name in ${wanted//|/ }; do
      is_installed "$name" && continue 2
      [ -n "$chosen" ] || ! apt-cache show "$name" >/dev/null 2>&1 || chosen=$name
    done
    missing+=("${chosen:-${wanted%%|*}}")
  done
}

# install_packages NAME...: returns 1 with one line where something is missing and cannot be installed.
install_packages() {
  local missing as=() log reason
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "No Debian packages here, so nothing is installed. What is needed is called on Debian: $*" >&2
    return 0
  fi
  missing_packages "$@"
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" != 0 ]; then
    # A password can be asked for at a terminal alone.
    if ! command -v sudo >/dev/null || { [ ! -t 0 ] && ! sudo -n true 2>/dev/null; }; then
      echo "Packages are missing; as the administrator install them with: apt-get install ${missing[*]}" >&2
      return 1
    fi
    as=(sudo)
  fi
  echo "Installing ${missing[*]}"
  log=$(mktemp)
  # A source that fails may be one that nothing here comes from. What is installed is for all users, whatever our mask is.
  if (
    umask 022
    "${as[@]}" apt-get update || true
    missing_packages "$@"
    "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
  ) >"$log" 2>&1; then
    rm -f "$log"
    return 0
  fi
  reason=$(grep -m 1 '^[EW]: .*Failed to fetch' "$log" || grep -m 1 '^E: ' "$log" || tail -n 1 "$log")
  echo "Could not install ${missing[*]}: ${reason#[EW]: } (all of it: $log)" >&2
  return 1
}

# need_folders: returns 1 with one line where the build or temporary files have no place.
need_folders() {
  local probe
  if ! { mkdir -p build && probe=$(mktemp -d build/probe-XXXXXX); } 2>/dev/null; then
    echo "$PWD cannot be written: copy the sources to a folder of your own and start again there." >&2
    return 1
  fi
  rmdir "$probe"
  if ! probe=$(mktemp -d 2>/dev/null); then
    echo "No temporary files can be made in ${TMPDIR:-/tmp}: set TMPDIR to a folder that can be written." >&2
    return 1
  fi
  rmdir "$probe"
}

# configure PRESET [cmake options]: makes or refreshes build/PRESET, and shows the log only when that fails.
configure() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! cmake --preset "$preset" "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# free_memory [PROC [CGROUP]]: in MiB, what is free for us; a group of processes may have less than the machine.
free_memory() {
  local proc=${1:-/proc} groups=${2:-/sys/fs/cgroup} free group most used
  free=$(awk '/^MemAvailable:/ { print int($2 / 1024) }' "$proc/meminfo")
  group=$(sed -n 's/^0:://p' "$proc/self/cgroup" 2>/dev/null)
  while :; do
    most=$(cat "$groups$group/memory.max" 2>/dev/null) && used=$(cat "$groups$group/memory.current" 2>/dev/null) &&
      [ "$most" != max ] && most=$(((most - used) / 1048576)) && [ "$most" -lt "$free" ] && free=$most
    [ -n "${group%/}" ] || break
    group=${group%/*}
  done
  echo "$free"
}

# build_jobs: one compiler for each processor, as far as there is memory: the largest source takes 600 MiB.
build_jobs() {
  local jobs memory
  jobs=$(nproc)
  memory=$(($(free_memory) / 600))
  [ "$memory" -ge "$jobs" ] || jobs=$memory
  echo $((jobs > 0 ? jobs : 1))
}

# build PRESET [cmake options]: as many at once as CMAKE_BUILD_PARALLEL_LEVEL says, or as fit.
build() {
  CMAKE_BUILD_PARALLEL_LEVEL=${CMAKE_BUILD_PARALLEL_LEVEL:-$(build_jobs)} cmake --build --preset "$@" -- --quiet
}
