#!/usr/bin/env bash
# The main job of the real program without a mouse: choose a tab, find a row by typing, copy it through the menu key's popup,
# look it up, copy the matches, close.
set -u
. "$(dirname "$0")/virtual_screen.sh"
need_tools Xvfb openbox xdotool xclip xwd sqlite3
start_screen
# Built with the whole suite.
[ ! -x "$QUORVANE_BIN/test_forms" ] ||
  QT_QPA_PLATFORM=xcb "$QUORVANE_BIN/test_forms" --gtest_filter='RealDisplay.*' >"$scratch/activation" 2>&1 ||
  fail "activation: $(grep -A4 Failure "$scratch/activation")"
run_program

picture() { xwd -silent -id "$main" | cksum; }

xdotool windowactivate --sync "$main"

# Four buttons and three logos stand before the tabs.
keys Tab Tab Tab Tab Tab Tab Tab Tab
first=$(picture)
keys Right
[ "$(picture)" != "$first" ] || fail "the right arrow does not choose the next tab"
keys Left
expect "picture of the first tab" "$(picture)" "$first"

# A row that the database knows, so that its lookup has matches, and that its name alone finds.
list_devices
for index in "${!rows[@]}"; do
  row=${rows[index]} name=${names[index]}
  [ "$(printf '%s\n' "${names[@]}" | grep -cF -- "$name")" = 1 ] && in_database "$row" && break
  name=
done
[ -n "$name" ] || { echo "SKIPPED: no device of this machine is in the database"; exit 77; }

keys Tab
xdotool type --delay 15 -- "$name"
keys Menu
choose 5
expect "copied row" "$(clipboard | tr -d '\r')" "$row"

lookup_opened() { window_titled "$name"; }
gone_lookup() { ! lookup_opened; }
close_lookup() {
  xdotool key alt+F4
  for _ in $(seq 50); do lookup_opened >/dev/null || return 0; sleep 0.1; done
  return 1
}

keys shift+F10
choose 1
wait_for 5 lookup_opened || fail "the popup opens no lookup window"
wait_until_still "$(lookup_opened)"
# The device's IDs, the search button, the matches.
keys Tab Tab Tab Menu
choose 3
expect "columns of the copied matches" "$(clipboard | tr -d '\r' | head -n 1)" "Name,Manufacturer,Hardware IDs"
[ "$(clipboard | grep -c .)" -gt 1 ] || fail "no match was copied"
close_lookup || fail "the lookup window does not close"

# hold KEY [SECONDS]: the server repeats it after 0.66 s, 25 times a second.
hold() { xdotool keydown "$1"; sleep "${2:-1.2}"; xdotool keyup "$1"; sleep 0.2; }
count() { windows_titled "$name" | wc -l; }

# Behind the list stand its headers and the lookup button. A key that is held is one press: the window that it opens gets
# none, and none is left over for the next press.
xdotool windowactivate --sync "$main"
keys Tab Tab
hold Return
wait_for 5 lookup_opened || fail "Return on the button opens no lookup window"
wait_until_still "$(lookup_opened)"
expect "windows of a held Return" "$(count)" 1
keys Tab Tab
hold space
hold Return
wait_for 5 test -s "$scratch/opened"
expect "searches of two held keys" "$(wc -l <"$scratch/opened")" 2
close_lookup || fail "the lookup window does not close"
xdotool windowactivate --sync "$main"
keys Return
wait_for 5 lookup_opened || fail "a press after a held one is lost"
wait_until_still "$(lookup_opened)"
close_lookup || fail "the second lookup window does not close"

# The keyboard goes where it likes while a key is down: a window that closes, a popup that opens, another control.
keys shift+Tab shift+Tab
xdotool keydown Menu
sleep 1
choose 1
xdotool keyup Menu
wait_for 5 lookup_opened || fail "a held menu key closes its popup"
wait_until_still "$(lookup_opened)"
keys Tab Tab
xdotool keydown space key alt+F4
sleep 1
xdotool keyup space
wait_for 5 gone_lookup || fail "the lookup window does not close under a held key"
xdotool windowactivate --sync "$main"
keys Tab Tab
xdotool keydown space key Tab
sleep 1
xdotool keyup space
wait_until_still "$main"
expect "windows of a key that was held over" "$(count)" 0
expect "searches" "$(wc -l <"$scratch/opened")" 2

xdotool windowactivate --sync "$main" key alt+F4
expect_end
verdict keyboard
