# Sourced by every script that builds or tests: names the Debian packages that each purpose needs, installs those that
# are missing, quietly, and configures a build.
# shellcheck shell=bash disable=SC2034

build_packages=(g++ cmake ninja-build pkg-config qt6-base-dev libsqlite3-dev libcurl4-openssl-dev libssl-dev libxcb1-dev
  libxcb-shape0-dev libxcb-xfixes0-dev libarchive-dev libgl-dev hwdata fonts-dejavu-core)
run_packages=(p7zip-full)
display_packages=(xvfb openbox xdotool x11-apps imagemagick)
# To build the Debian package.
package_packages=(dpkg-dev gzip)
# To test it.
package_test_packages=(lintian desktop-file-utils appstream debootstrap groff x11-utils python3)
test_packages=(openssl libgtest-dev libgmock-dev nginx-light php-fpm xclip sqlite3 strace mdbtools)
# To boot emulated PCs.
machine_packages=(qemu-system-x86 seabios ipxe-qemu ovmf swtpm mmdebstrap genext2fs e2fsprogs python3)
# The desktops that tests/end_to_end/desktops goes through, and what it looks at them with.
desktop_packages=(xfwm4 kwin-x11 metacity icewm i3-wm weston xwayland xserver-xorg-core xserver-xorg-video-dummy picom tint2
  x11-utils x11-xserver-utils dbus-daemon locales)
bench_packages=(libbenchmark-dev python3 xvfb openbox lshw hwinfo pciutils hardinfo curl)

# For the sanitizer build with the fuzzers.
fuzz_packages=(clang lld llvm libclang-rt-14-dev)

# install_packages NAME...: returns 1 with a message where something is missing and cannot be installed.
install_packages() {
  local missing=() name
  for name in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  local as=()
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null && [ ! -t 0 ]; then
      echo "Missing packages: ${missing[*]}" >&2
      echo "Install them with: apt-get install ${missing[*]}" >&2
      return 1
    fi
    as=(sudo)
  fi
  echo "Installing ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as[@]}" apt-get update && DEBIAN_FRONTEND=noninteractive "${as[@]}" apt-get install -y \
    --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    rm -f "$log"
    echo "Could not install: ${missing[*]}" >&2
    return 1
  fi
  rm -f "$log"
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
