# Sourced by test-package: a Debian without anything of ours, in a folder. It is made once and kept under build/clean-root;
# each use writes to a layer above it, which goes with the mount namespace of the caller.
# shellcheck shell=bash

clean_root_cache=$PWD/build/clean-root

# The bare system: false where it cannot be made (no network, for instance).
make_bare_system() {
  local codename mirror
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  base=$clean_root_cache/$codename
  [ ! -d "$base" ] || return 0
  mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' | head -n 1)
  rm -rf "$base.part"
  mkdir -p "$clean_root_cache"
  debootstrap --variant=minbase "$codename" "$base.part" "$mirror" &&
    printf '#!/bin/sh\nexit 101\n' >"$base.part/usr/sbin/policy-rc.d" &&
    chmod +x "$base.part/usr/sbin/policy-rc.d" &&
    mv "$base.part" "$base"
}

# enter_clean_root FOLDER: sets $root, a system that can be written, with the running kernel's /proc and /dev, and the
# screen's socket.
enter_clean_root() {
  root=$1/root
  mkdir -p "$root" "$1/layer" "$1/work" "$clean_root_cache/archives/partial"
  mount -t overlay overlay -o "lowerdir=$base,upperdir=$1/layer,workdir=$1/work" "$root" || return 1
  mount -t proc proc "$root/proc" &&
    mount --rbind /dev "$root/dev" &&
    mount --rbind /sys "$root/sys" &&
    mount --bind "$clean_root_cache/archives" "$root/var/cache/apt/archives" || return 1
  mkdir -p "$root/tmp/.X11-unix" /tmp/.X11-unix
  mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix" || return 1
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  in_root apt-get -q update
}

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

leave_clean_root() {
  umount -R "$root" 2>/dev/null || umount -R -l "$root"
  ! mountpoint -q "$root"
}

# write_machine TEXT FOLDER: the tree of a made-up PC, told in the form of tests/platform/pnp/device_fixture.h.
write_machine() {
  local line path='' place name value
  while IFS= read -r line; do
    case $line in
      /*)
        path=${line%% @ *}
        mkdir -p "$2$path"
        place=${line##* @ }
        [ "$place" = "$line" ] && continue
        case $place in
          bus/*) mkdir -p "$2/$place/devices" && ln -sr "$2$path" "$2/$place/devices/${path##*/}" ;;
          *) mkdir -p "$2/$place" && ln -sr "$2$path" "$2/$place/${path##*/}" ;;
        esac ;;
      "  "*" -> "*)
        name=${line%% -> *}
        ln -sr "$2${line##* -> }" "$2$path/${name#  }" ;;
      "  "*" : "*)
        name=${line%% : *}
        value=${line#* : }
        printf "$(printf '\\x%s' $value)" >"$2$path/${name#  }" ;;
      "  "*" = "*)
        name=${line%% = *}
        printf '%s\n' "${line#* = }" >"$2$path/${name#  }" ;;
    esac
  done <"$1"
}
