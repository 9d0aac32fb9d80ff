# Sourced by what shows windows to nobody: a display without a screen.
# shellcheck shell=bash

# start_display FILE SERVER [OPTION...]: starts an X server on a display that is free, writes the number to FILE, and sets
# and exports DISPLAY; its process is the last one in the background. False where it did not come.
start_display() {
  local file=$1
  shift
  "$@" -displayfd 3 -nolisten tcp 3>"$file" >/dev/null 2>&1 &
  for _ in {1..200}; do
    [ ! -s "$file" ] || break
    sleep 0.1
  done
  [ -s "$file" ] || { echo "The virtual display did not start." >&2; return 1; }
  DISPLAY=:$(cat "$file")
  export DISPLAY
}

# A window that comes while the window manager starts may stay hidden.
wait_for_window_manager() {
  for _ in {1..200}; do
    ! xdotool get_num_desktops >/dev/null 2>&1 || return 0
    sleep 0.1
  done
  echo "The window manager did not start." >&2
  return 1
}
