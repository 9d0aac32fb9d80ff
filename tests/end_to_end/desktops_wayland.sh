# Sourced by `desktops`: the session of a program that is a native client of Wayland, under a compositor that is itself a
# window of the virtual screen. Nobody tells where a surface stands, so it is looked for in pictures of that screen.
# shellcheck shell=bash disable=SC2154

title_height=32
area_above=0 # what the compositor's panel takes

# start_compositor WIDTH HEIGHT
start_compositor() {
  local as=()
  export KWIN_COMPOSE=Q MUTTER_DEBUG_DUMMY_MODE_SPECS="$1x$2" WLR_BACKENDS=x11 WLR_RENDERER=pixman
  case ${manager[0]} in
    weston) area_above=$weston_panel_height ;;
    # Without the capability of its file, which containers refuse.
    kwin_wayland) cp "$(command -v kwin_wayland)" "$scratch/" && manager[0]=$scratch/kwin_wayland ;;
    sway)
      printf '%s\n' "output X11-1 resolution $1x$2" 'output * bg #204080 solid_color' \
        'for_window [app_id=".*"] border none, floating enable' >"$scratch/sway.conf"
      mkdir "$scratch/run"
      # It refuses to be root.
      [ "$(id -u)" != 0 ] || { chmod 711 "$scratch"; chown nobody "$scratch/run"; as=(setpriv --reuid=nobody --regid=nogroup --clear-groups); }
      chmod 700 "$scratch/run"
      export XDG_RUNTIME_DIR=$scratch/run ;;
  esac
  (cd "$scratch" && exec "${as[@]}" dbus-run-session -- "${manager[@]}" >"$scratch/manager.log" 2>&1) &
  pids+=($!)
  socket() { for display in "$XDG_RUNTIME_DIR"/quorvane "$XDG_RUNTIME_DIR"/wayland-?; do [ ! -S "$display" ] || return 0; done; return 1; }
  wait_for 20 socket || skip "${manager[0]} does not start here: $(tail -n 1 "$scratch/manager.log")"
  socket
  export WAYLAND_DISPLAY=$display
  unset DISPLAY
}

screen() { DISPLAY=$pointer import -window root png:-; }

# background [WIDTH X]: where the colour of its background is seen, as "width height x y"; within a strip if one is told.
background() {
  convert "$scratch/screen.png" -crop "${1:+$1x0}+${2:-0}+$area_above" -fill black +opaque '#404040' -trim \
    -format '%w %h %X %Y\n' info: 2>/dev/null | tr -d +
}

# place_seen: as place; W is 0 where no window is seen. Some of the colour may be in the title bar too, but not at its left.
place_seen() {
  local title=$((title_height * ${scale:-100} / 100))
  W=0
  screen >"$scratch/screen.png"
  read -r W _ X _ < <(background)
  [ "$W" -gt 1 ] || { W=0; return 1; }
  read -r _ H _ Y < <(background 3 "$X")
  X=$((X - 1)) Y=$((Y - title)) W=$((W + 1)) H=$((H + title))
}
unseen() { ! place_seen; }
seen() { place_seen; }

remember() { screen >"$scratch/before.png"; }
# differs PIXELS: so many are others than remembered, below the title.
differs() {
  local count
  screen >"$scratch/now.png"
  count=$(compare -metric AE -extract "${W}x$((H - 60))+$X+$((Y + 60))" "$scratch/before.png" "$scratch/now.png" null: 2>&1)
  [ "${count%%.*}" -ge "$1" ]
}
same() { ! differs 400; }

native_popup() {
  point 200 140
  mouse click 1
  sleep 0.3
  remember
  mouse key shift+F10
  wait_for 3 differs 20000 || fail "no popup"
  picture popup
  for key in Down Down Down Down Return; do mouse key $key; sleep 0.1; done
  wait_for 3 same || fail "the popup stays"
  timeout 5 wl-paste 2>/dev/null | tr -d '\r' >"$scratch/clipboard"
  [[ $special = *'no clipboard'* ]] || grep -q '^Basalt HD 2TB,' "$scratch/clipboard" || fail "clipboard: $(head -c 300 "$scratch/clipboard")"
}

native_maximise() {
  local before full
  before=$(where)
  IFS=x+ read -r W H _ <<<"$primary"
  full="0 $area_above $W $((H - area_above))"
  double_click_title
  near_soon "maximised to" where "$full" 3
  picture maximised
  double_click_title
  near_soon "restored to" where "$before" 3
}

native_minimise() {
  local before
  before=$(where)
  point -115 19
  mouse click 1
  wait_for 5 unseen || { fail "not minimised"; return; }
  [[ $special = *returns* ]] || return 0
  mouse key alt+Tab
  wait_for 5 seen || fail "does not come back"
  near_soon "place after minimising" where "$before" 3
}

native_session() {
  place() { place_seen; }
  mouse mousemove 640 880 # the pointer has the colour too
  wait_for 30 seen || { fail "no window is seen: $(cat "$scratch/errors")"; verdict "$desktop"; }
  main=$(DISPLAY=$pointer xwininfo -root | sed -n 's/.*Window id: \([^ ]*\).*/\1/p')
  DISPLAY=$pointer wait_until_still "$main" || fail "the first scan did not end"
  place
  scale=$((W * 100 / 750))
  place
  picture main
  screen | convert - -unique-colors "txt:$scratch/shown"
  ! grep -q '#F8B8F7' "$scratch/shown" || fail "see-through pixels show their colour"
  point 300 19
  drag $((100 - X)) $((80 - Y))
  near "moved to" "$(where)" "100 80 $W $H" 12
  sizes_by_its_grip
  native_popup
  # Floating windows are neither maximised nor minimised there.
  case $special in *sway*) ;; *) native_maximise; native_minimise ;; esac
}
