#!/usr/bin/env bash
# An installation below a prefix: what it holds, where a user's data come to lie at the first start, and that a first start
# without room, or from a folder that cannot be written, leaves no half of them.
set -u
. "$(dirname "$0")/virtual_screen.sh"
need_tools Xvfb openbox xdotool xwd
start_screen
prefix=$scratch/prefix
cmake --install "$QUORVANE_BUILD" --prefix "$prefix" >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }

expect "programs" "$(ls "$prefix/bin" | tr '\n' ' ')" "quorvane quorvane-db quorvane-list "
expect "data" "$(cd "$prefix/share/quorvane" && find . -type f ! -path './color_presets/*' | sort | tr '\n' ' ')" \
  "./hwids.mdb ./improve_database_keywords_to_skip.txt "
for file in share/applications/quorvane.desktop share/man/man1/quorvane{,-db,-list}.1.gz \
  share/icons/hicolor/{16x16,24x24,32x32,48x48,64x64,128x128,256x256}/apps/quorvane.png \
  share/icons/hicolor/scalable/apps/quorvane.svg share/bash-completion/completions/quorvane{,-db,-list}; do
  [ -s "$prefix/$file" ] || fail "$file is missing"
done
find "$prefix" | sort >"$scratch/installed"

message_box() { window_titled Quorvane; }

# start FINDER COMMAND...: until FINDER, main_window or message_box, finds a window.
start() {
  local finder=$1
  shift
  "$@" 2>/dev/null &
  quorvane=$!
  pids+=($quorvane)
  wait_for 20 "$finder" || fail "no $finder"
  window=$("$finder")
  wait_until_still "$window"
}

# end STATUS KEY: by a key to the window.
end() {
  xdotool windowactivate --sync "$window" key "$2"
  wait_for 10 gone $quorvane || { fail "still running"; kill -9 $quorvane; }
  wait $quorvane
  expect "status" $? "$1"
}

export XDG_DATA_HOME=$scratch/data
expect "database before the first start" "$("$prefix/bin/quorvane-list" --lookup 2>&1 >/dev/null)" ""
[ ! -e "$XDG_DATA_HOME" ] || fail "quorvane-list makes the user's folder"

start main_window "$prefix/bin/quorvane"
end 0 alt+F4
expect "what the first start makes" "$(cd "$XDG_DATA_HOME" && find . ! -name settings.ini | sort)" \
  "$(cd "$prefix/share" && { echo .; find ./quorvane; } | sort)"
cmp -s "$prefix/share/quorvane/hwids.mdb" "$XDG_DATA_HOME/quorvane/hwids.mdb" || fail "another database"

# It is filled once: a database that is missing later is an error, and the user's own files are never written over.
rm "$XDG_DATA_HOME/quorvane/hwids.mdb"
start message_box "$prefix/bin/quorvane"
end 1 Return
[ ! -e "$XDG_DATA_HOME/quorvane/hwids.mdb" ] || fail "the folder was filled a second time"
expect "the installation" "$(find "$prefix" | sort)" "$(cat "$scratch/installed")"

# own_mounts COMMANDS: a shell with mounts of its own.
own_mounts() { exec unshare -m --propagation private bash -c "$1"; }
if unshare -m true 2>/dev/null; then
  rm -rf "$XDG_DATA_HOME"
  mkdir "$XDG_DATA_HOME"
  start message_box own_mounts "mount -t tmpfs -o size=4m none '$XDG_DATA_HOME' || exit 99
    '$prefix/bin/quorvane'
    find '$XDG_DATA_HOME' -type f >'$scratch/left'
    mount -o remount,size=40m '$XDG_DATA_HOME' && '$prefix/bin/quorvane'
    status=\$?; find '$XDG_DATA_HOME' -name '*.mdb' -o -name Dark.ini >'$scratch/filled'; exit \$status"
  xdotool windowactivate --sync "$window" key Return
  wait_for 20 main_window || fail "no start once there is room"
  window=$(main_window)
  wait_until_still "$window"
  end 0 alt+F4
  expect "left on a full disk" "$(cat "$scratch/left")" ""
  expect "made once there was room" "$(wc -l <"$scratch/filled")" 2

  # A copied folder that cannot be written: the files come from there.
  mkdir "$scratch/disc"
  cp "$prefix/bin/quorvane" "$prefix/share/quorvane/hwids.mdb" "$scratch/disc/"
  start main_window own_mounts "mount --bind '$scratch/disc' '$scratch/disc' &&
    mount -o remount,bind,ro '$scratch/disc' && exec '$scratch/disc/quorvane'"
  end 0 alt+F4
  expect "what comes from a disc" "$(ls -A "$XDG_DATA_HOME/quorvane" | grep -vx -e settings.ini -e color_presets)" hwids.mdb
fi

# A copied folder that can be written keeps everything beside the program.
rm -rf "$XDG_DATA_HOME"
mkdir "$scratch/stick"
cp "$prefix/bin/quorvane" "$prefix/share/quorvane/hwids.mdb" "$scratch/stick/"
start main_window "$scratch/stick/quorvane"
end 0 alt+F4
[ ! -e "$XDG_DATA_HOME" ] || fail "a copied folder writes elsewhere"

verdict install
