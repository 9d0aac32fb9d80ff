#!/usr/bin/env bash
# The real program on this machine's own devices: it scans by itself, a double click looks a device up, the menus copy to the
# clipboard and open the browser, the close button ends the process with status 0.
set -u
. "$(dirname "$0")/virtual_screen.sh"
need_tools Xvfb openbox xdotool xclip xwd import sqlite3
start_screen
run_program
eval "$(xdotool getwindowgeometry --shell "$main")"
left=$X top=$Y # pixels of the screen; places in the window are added to them

# The rows stand in the order of quorvane-list sorted by name, which is how the list comes up.
list_devices
[ ${#rows[@]} -gt 0 ] || fail "this machine has no devices"

# Select the first row, then copy the whole list through the popup menu.
xdotool mousemove $((left + 200)) $((top + 140)) click 1
sleep 0.3
keys shift+F10
choose 4
clipboard >"$scratch/clipboard"
expect "rows on the clipboard" "$(sort "$scratch/clipboard" | tr -d '\r' | sed '/^$/d')" \
  "$(sort "$scratch/list" | tr -d '\r' | sed '/^$/d')"

# Search by hardware IDs: the browser gets the first ID, its "&" escaped once and its backslash as such.
keys shift+F10
choose 3
wait_for 5 test -s "$scratch/opened" || fail "no browser was started"
site=$(sed -n 's/^QUORVANE_SEARCH_SITE:STRING=//p' "$QUORVANE_BUILD/CMakeCache.txt")
case $(cat "$scratch/opened" 2>/dev/null) in
  "$site/?q="*'%5C'*'%20Driver') ;;
  *) fail "address: $(cat "$scratch/opened" 2>/dev/null)" ;;
esac

# A double click opens a window of its own on the device, and a second one another.
xdotool mousemove $((left + 200)) $((top + 140)) click --repeat 2 --delay 60 1
name=${names[0]}
wait_for 5 window_titled "$name" || fail "no lookup window on '$name'"

close_lookup() {
  xdotool windowactivate --sync "$1" key alt+F4
  for _ in $(seq 50); do
    windows_titled "$name" | grep -qx "$1" || return 0
    sleep 0.1
  done
  return 1
}
for id in $(windows_titled "$name"); do close_lookup "$id" || fail "a lookup stays open"; done

# Every device opens its window; a PCI device finds its name, in the colour of best matches, in the list of matches.
for ((row = 0; row < 14 && row < ${#rows[@]}; row++)); do
  name=${names[row]}
  xdotool windowactivate --sync "$main" mousemove $((left + 200)) $((top + 140 + 20 * row)) click --repeat 2 --delay 60 1
  wait_for 5 window_titled "$name" || { fail "no lookup window on '$name'"; continue; }
  lookup=$(window_titled "$name")
  wait_until_still "$lookup"
  case ${rows[row]} in
    *,PCI\\VEN_*)
      # A device that the ID files do not name has no match.
      ! in_database "${rows[row]}" ||
        import -window "$lookup" -crop 548x90+10+210 +repage txt:- | grep -q 'srgb(253,200,0)' ||
        fail "no best match for '$name'" ;;
  esac
  close_lookup "$lookup" || fail "the lookup on '$name' stays open"
done

# A caption button that turns round under the pointer stays whole for it: what its narrow face leaves is no hole.
under_pointer() { xdotool getmouselocation --shell | sed -n 's/^WINDOW=//p'; }
xdotool windowactivate --sync "$main" mousemove $((left + 300)) $((top + 80))
own=$(under_pointer) through=0
for round in 1 2 3 4; do
  xdotool mousemove $((left + 300)) $((top + 80))
  sleep 0.7
  xdotool mousemove $((left + 627)) $((top + 19)) # the left edge of the minimise button
  for _ in $(seq 10); do
    [ "$(under_pointer)" = "$own" ] || through=$((through + 1))
    sleep 0.02
  done
done
expect "holes under the pointer" $through 0
for wait in 0.1 0.15 0.3 0.35; do # when the face is narrowest
  xdotool windowactivate --sync "$main" mousemove $((left + 300)) $((top + 80))
  sleep 0.7
  xdotool mousemove $((left + 627)) $((top + 19))
  sleep $wait
  xdotool click 1
  minimised() { ! main_window; }
  wait_for 3 minimised || fail "a click after $wait s on a turning button is lost"
  xdotool windowmap --sync "$main"
  wait_for 3 main_window
done

# Closing the main window closes everything and ends the process.
xdotool windowactivate --sync "$main" 2>/dev/null
xdotool mousemove $((left + 717)) $((top + 19)) click 1
expect_end
verdict lookup
