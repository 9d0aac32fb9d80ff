# Sourced by test-package and test-fresh: a Debian without anything of ours, in a folder. It is made once for each release
# and kept under build/clean-root; each use writes to a layer above it, which goes with the mount namespace of the caller.
# shellcheck shell=bash

clean_root_cache=$PWD/build/clean-root

host_release() { (. /etc/os-release && echo "$VERSION_CODENAME"); }

# make_bare_system [RELEASE]: this machine's by default; sets $base. False where it cannot be made (no network, for
# instance).
make_bare_system() {
  local release=${1:-$(host_release)} mirror part
  base=$clean_root_cache/$release
  [ ! -d "$base/system" ] || return 0
  mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' | grep -m 1 'debian/*$') ||
    { echo "no source of this machine's packages is Debian's archive"; return 1; }
  part=$base/system.part
  rm -rf --one-file-system "$part"
  mkdir -p "$base"
  # How this machine reaches archives, without what it does with packages.
  apt-config dump | grep -E "^Acquire::(http|https|Retries|ForceIPv[46])[: ]" >"$base/apt.conf" || true
  mmdebstrap --variant=minbase --aptopt="$base/apt.conf" "$release" "$part" "$mirror" || return 1
  printf '#!/bin/sh\nexit 101\n' >"$part/usr/sbin/policy-rc.d" && chmod +x "$part/usr/sbin/policy-rc.d" || return 1
  # What is thrown away need not be synced.
  echo force-unsafe-io >"$part/etc/dpkg/dpkg.cfg.d/unsafe-io"
  if [ -n "$(ls /usr/local/share/ca-certificates 2>/dev/null)" ]; then
    mkdir -p "$part/usr/local/share/ca-certificates" "$part/etc/ssl/certs"
    cp /usr/local/share/ca-certificates/* "$part/usr/local/share/ca-certificates/"
    cp -L /etc/ssl/certs/ca-certificates.crt "$part/etc/ssl/certs/"
  fi
  mv "$part" "$base/system"
}

# enter_clean_root FOLDER: sets $root, a system that can be written, with the running kernel's /proc, /dev and /sys, and
# the screen's socket. It is a plain folder and no mount point, as in most chroots.
enter_clean_root() {
  clean_root_mount=$1/mount
  root=$clean_root_mount/system
  mkdir -p "$clean_root_mount" "$1/layer" "$1/work" "$clean_root_cache/archives/partial"
  mount -t overlay overlay -o "lowerdir=$base,upperdir=$1/layer,workdir=$1/work" "$clean_root_mount" || return 1
  mount -t proc proc "$root/proc" &&
    mount --rbind /dev "$root/dev" &&
    mount --rbind /sys "$root/sys" &&
    mount --bind "$clean_root_cache/archives" "$root/var/cache/apt/archives" || return 1
  mkdir -p "$root/tmp/.X11-unix" /tmp/.X11-unix
  mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix" || return 1
  cp -L /etc/resolv.conf "$root/etc/resolv.conf"
}

# update_lists: false where the archive cannot be reached.
update_lists() { in_root apt-get -q -o APT::Update::Error-Mode=any update; }

# in_root COMMAND...: as the administrator of the clean system.
in_root() {
  chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 TERM=dumb \
    DEBIAN_FRONTEND=noninteractive "$@"
}

# as_user USER COMMAND...: as an ordinary user of it, at the virtual screen if there is one. Started in the background, its
# process is the command's own.
as_user() {
  local user=$1
  shift
  exec chroot --userspec="$user:$user" "$root" /usr/bin/env -i -C "/home/$user" HOME="/home/$user" USER="$user" \
    PATH=/usr/local/bin:/usr/bin:/bin LC_ALL=C.UTF-8 TERM=dumb QT_FONT_DPI=96 ${DISPLAY:+DISPLAY=$DISPLAY} "$@"
}

# False where something is mounted there still, and so nothing may be removed.
leave_clean_root() {
  umount -R "$clean_root_mount" 2>/dev/null || umount -R -l "$clean_root_mount"
  ! mountpoint -q "$clean_root_mount"
}
