# Sourced by the end-to-end scripts and whatever else shows windows to nobody: a virtual screen with a window manager, a
# folder of its own for the program, a browser and a clipboard that can be read. Needs QUORVANE_BIN, the folder with the
# built programs.

scratch=$(mktemp -d)
pids=()
failures=0

finish() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$scratch"
}
trap finish EXIT

fail() {
  echo "FAILED: $*" >&2
  failures=$((failures + 1))
}

# expect WHAT ACTUAL EXPECTED
expect() {
  [ "$2" = "$3" ] || fail "$1: got '$2', expected '$3'"
}

# verdict NAME: ends the script.
verdict() {
  [ $failures = 0 ] && echo "$1: ok"
  exit $((failures > 0))
}

# need_tools TOOL...: skips the script where one is missing.
need_tools() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null || { echo "SKIPPED: $tool is not installed"; exit 77; }
  done
}

. "$(dirname "${BASH_SOURCE[0]}")/../../packaging/display.sh"

# new_display SERVER [OPTION...]: an X server without a window manager.
new_display() {
  start_display "$scratch/display" "$@"
  pids+=($!)
  export XDG_RUNTIME_DIR="$scratch" HOME="$scratch" QT_FONT_DPI=96 QT_QPA_PLATFORM=xcb
  chmod 700 "$scratch"
}

# start_screen [SIZE]
start_screen() {
  new_display Xvfb -noreset -screen 0 "${1:-1280x900}x24"
  openbox >/dev/null 2>&1 &
  pids+=($!)
  # The first key from xdotool makes the server change its keyboard, upon which the window manager takes its shortcuts anew:
  # one that comes in that moment is lost. So a first key is spent here. The window manager answers in order: once it has
  # changed the desktops it has its shortcuts.
  wait_for_window_manager || fail "no window manager"
  xdotool key Shift_L
  xdotool set_num_desktops 1
  wait_for 20 has_one_desktop || fail "the window manager does not answer"
}

has_one_desktop() { [ "$(xdotool get_num_desktops 2>/dev/null)" = 1 ]; }

# A program folder with its own database; a browser that writes down what it is asked to open.
make_program_folder() {
  program=$scratch/program
  mkdir -p "$program" "$scratch/path"
  cp "$QUORVANE_BIN/quorvane" "$program/"
  printf '#!/bin/sh\nprintf "%%s\\n" "$1" >>"%s/opened"\n' "$scratch" >"$scratch/path/xdg-open"
  chmod +x "$scratch/path/xdg-open"
  for name in www-browser x-www-browser firefox; do cp "$scratch/path/xdg-open" "$scratch/path/$name"; done
  export PATH="$scratch/path:$PATH" BROWSER="$scratch/path/xdg-open"
}

# build_database FILE [OPTION...]: from the system's ID files, unless the options name others.
build_database() {
  local file=$1
  shift
  "$QUORVANE_BIN/quorvane-db" build --output "$file" "$@" >/dev/null 2>&1 || { echo "no database"; exit 1; }
}

# run_program: in a folder of its own with a database, until it has scanned this machine; $quorvane is the process, $main
# the window.
run_program() {
  make_program_folder
  build_database "$program/hwids.mdb"
  cd "$program" || exit 1
  ./quorvane 2>"$scratch/errors" &
  quorvane=$!
  pids+=("$quorvane")
  wait_for 20 main_window || fail "no main window"
  main=$(main_window)
  wait_until_still "$main" || fail "the first scan did not end"
}

gone() { ! kill -0 "$1" 2>/dev/null; }

# expect_end: of the program that run_program started, by itself, with status 0.
expect_end() {
  if wait_for 5 gone "$quorvane"; then
    wait "$quorvane"
    expect "status" $? 0
  else
    fail "the process does not end"
  fi
  [ ! -s "$scratch/errors" ] || { echo "standard error:"; cat "$scratch/errors"; }
}

# list_devices: sets $rows, those of quorvane-list, and $names, what the devices in them are called. A name may hold what
# separates the fields of a row.
list_devices() {
  "$QUORVANE_BIN/quorvane-list" >"$scratch/list" && "$QUORVANE_BIN/quorvane-list" --format json >"$scratch/list.json" ||
    fail "quorvane-list"
  mapfile -t rows < <(tr -d '\r' <"$scratch/list" | sed -e 1d -e '/^$/d')
  mapfile -t names < <(cd "$scratch" &&
    sqlite3 :memory: "SELECT json_extract(value, '\$.name') FROM json_each(readfile('list.json'))")
  expect "names of devices" "${#names[@]}" "${#rows[@]}"
}

# in_database ROW: whether the program's database knows the device of a row of quorvane-list by its PCI ID.
in_database() {
  local id
  id=$(printf '%s' "${1##*,}" | tr '|' '\n' | grep -xE 'PCI.VEN_[0-9A-F]{4}&DEV_[0-9A-F]{4}' | head -n 1)
  [ -n "$id" ] && [ "$(sqlite3 "$program/hwids.mdb" "SELECT count(*) FROM hwids WHERE hwid = '$id'")" != 0 ]
}

# keys KEY...: one after another to the window that has the keyboard.
keys() { for key in "$@"; do xdotool key "$key"; sleep 0.08; done; }

# choose N: the entry that is N down in an open popup.
choose() {
  sleep 0.3
  for _ in $(seq "$1"); do keys Down; done
  keys Return
  sleep 0.3
}

# rounds SHORT LONG: how often something at a random moment is repeated, in the everyday run and in that of check --long.
rounds() { if [ "${QUORVANE_LONG:-}" = 1 ]; then echo "$2"; else echo "$1"; fi; }

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
  local tries=$(($1 * 10))
  shift
  for _ in $(seq "$tries"); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  return 1
}

# windows_titled TITLE [begin|within]: the windows that can be seen and bear this title, or one that begins so or has it
# somewhere. A title is data, often a device's own name, so it is compared and never made a pattern.
windows_titled() {
  local id title status=1
  for id in $(xdotool search --onlyvisible --name . 2>/dev/null); do
    title=$(xdotool getwindowname "$id" 2>/dev/null) || continue
    case ${2:-}:$title in
      :"$1" | begin:"$1"* | within:*"$1"*) echo "$id" && status=0 ;;
    esac
  done
  return $status
}

# window_titled TITLE [begin|within]: the last of them.
window_titled() {
  local found
  found=$(windows_titled "$@") && echo "${found##*$'\n'}"
}
window_begins() { window_titled "$1" begin; }
main_window() { window_titled 'Quorvane v' within; }

# A window that has stood still for a second: no animation runs, so no work does.
wait_until_still() {
  local before= now= still=0
  for _ in $(seq 150); do
    now=$(xwd -silent -id "$1" 2>/dev/null | cksum)
    if [ "$now" = "$before" ]; then still=$((still + 1)); else still=0; fi
    [ $still -ge 4 ] && return 0
    before=$now
    sleep 0.3
  done
  return 1
}

# click WINDOW X Y [MORE]: in pixels of the window.
click() {
  local id=$1 x=$2 y=$3 X=0 Y=0
  shift 3
  eval "$(xdotool getwindowgeometry --shell "$id")"
  xdotool windowactivate --sync "$id" mousemove $((X + x)) $((Y + y)) click "$@" 1
}
# open_by_button X NAME: the main window's button, and the window that it opens.
open_by_button() {
  click "$main" "$1" 57
  wait_for 10 window_titled "$2" || fail "no window '$2'"
  window_titled "$2"
}

# start_server: hands out $scratch/served to the staged program and writes the requests into $scratch/requests; $server is
# the process, $port its port. Ends when descriptor 4 is closed.
start_server() {
  mkdir -p "$scratch/requests"
  mkfifo "$scratch/end_of_server"
  "$QUORVANE_BIN/loopback_server" "$scratch/served" "$scratch/requests" <"$scratch/end_of_server" >"$scratch/port" &
  server=$!
  pids+=($server)
  exec 4>"$scratch/end_of_server"
  wait_for 5 test -s "$scratch/port" || { echo "no server"; exit 1; }
  port=$(cat "$scratch/port")
  export QUORVANE_STAGE_SERVER=http://127.0.0.1:$port
}

clipboard() { timeout 5 xclip -selection clipboard -o 2>/dev/null; }
