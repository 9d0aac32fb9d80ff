#!/usr/bin/env bash
# The real program through all that it does, under strace: it writes nothing outside its own folder, speaks to nobody but
# its server, says nothing there but what its user asked for, starts nothing that outlives it, and leaves files that carry
# the user's own mask.
set -u
. "$(dirname "$0")/virtual_screen.sh"
need_tools Xvfb openbox xdotool xclip xwd strace sqlite3
strace -qq -e trace=none true 2>/dev/null || { echo "SKIPPED: no process may be traced here"; exit 77; }
start_screen
make_program_folder
cp "$QUORVANE_BIN/quorvane-staged" "$program/quorvane"
cp -r "$QUORVANE_BIN/color_presets" "$QUORVANE_BIN/improve_database_keywords_to_skip.txt" "$program/"
cd "$program" || exit 1
# Where it would write by surprise.
mkdir "$scratch/home" "$scratch/tmp"
chmod 700 "$scratch/home"
export HOME=$scratch/home TMPDIR=$scratch/tmp

# Devices whose names are statements, half a quote and a path; the last has no driver.
cat >"$scratch/machine" <<'END'
/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb
  idVendor = 1234
  idProduct = 0001
  bDeviceClass = 09
  product = x'); DROP TABLE hwids; --
  manufacturer = Maker' OR '1'='1
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = 1234
  idProduct = 0002
  bDeviceClass = 09
  product = ../../../../tmp/$(id)
  manufacturer = "Quoted" | Maker
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-3 @ bus/usb
  idVendor = 1234
  idProduct = 0003
  bDeviceClass = 09
  product = Secret Gadget
  manufacturer = Nobody
  serial = 0123456789
END

# A database that knows nothing, so that there is something to contribute, and a newer one on the server.
printf 'ffff  Nobody\n\tffff  Nothing\n' >"$scratch/none.ids"
for version in 1.0.0 2.0.0; do
  build_database "$scratch/$version.mdb" --pci-ids "$scratch/none.ids" --usb-ids "$scratch/none.ids" --version $version
done
cp "$scratch/1.0.0.mdb" hwids.mdb
files=$scratch/served/files/updates/quorvane
"$QUORVANE_BIN/quorvane-db" pack --output "$files" --program-version 1.0.0 "$scratch/2.0.0.mdb" >/dev/null 2>&1 ||
  { echo "no archive"; exit 1; }
printf '[main]\r\nCheckForUpdates=1\r\n' >settings.ini

start_server
export QUORVANE_STAGE=$scratch/machine

# A browser that tells what it was given; nobody has a session bus here.
printf '#!/bin/sh\nprintf "%%s %%s\\n" "$1" "${DBUS_SESSION_BUS_ADDRESS-no bus}" >>"%s/opened"\n' "$scratch" \
  >"$scratch/path/xdg-open"
unset DBUS_SESSION_BUS_ADDRESS SESSION_MANAGER XDG_RUNTIME_DIR
# The leak check cannot look into a process that is traced.
export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0

# A mask that no file has by chance.
ls -A . color_presets >"$scratch/files_before"
umask 027
strace -f -q -y -s 256 --seccomp-bpf -e trace=%file,%network,%process,ftruncate,fchmod,fchmodat -e signal=none \
  -o "$scratch/record" ./quorvane 2>"$scratch/errors" &
tracer=$!
pids+=($tracer)

wait_for 30 main_window || fail "no main window"
main=$(main_window)
quorvane=$(pgrep -P $tracer)
wait_until_still "$main" || fail "the first scan did not end"

# Pictures for whoever works on this script.
shot() { [ -z "${SHOTS:-}" ] || import -window root "$SHOTS/$1.png"; }

# whole_calls RECORD: the record with each call that another thread's interrupted in one line with its result.
whole_calls() {
  awk '
    / <unfinished \.\.\.>$/ { sub(/ <unfinished \.\.\.>$/, ""); begun[$1] = $0; next }
    $2 == "<..." && $1 in begun {
      start = begun[$1]
      delete begun[$1]
      sub(/^[0-9]+ +<\.\.\. [a-z0-9_]+ resumed>/, "")
      $0 = start $0
    }
    { print }
    END { for (pid in begun) print begun[pid] }' "$1"
}

# written RECORD: what is opened to be written, made, moved, changed or removed, each as a full path. A call that never
# returned counts as done.
written() {
  whole_calls "$1" | sed -E 's/^[0-9]+ +//' | grep -v ' = -1 ' | grep -E \
    '^(open|openat|openat2)\(.*O_(WRONLY|RDWR|CREAT|TRUNC)|^(creat|mkdir|rmdir|unlink|rename|link|symlink|truncate|f?chmod|f?chown|lchown|mknod|utime|setxattr)' |
    sed -nE 's/^((sym)?link(at)?\()"[^"]*", /\1/; s/^[a-z0-9]+\(((AT_FDCWD|[0-9]+)<([^>]*)>, )?"([^"]*)"(, ((AT_FDCWD|[0-9]+)<[^>]*>, )?"([^"]*)")?.*/\3\t\4\n\3\t\8/p' |
    awk -F'\t' '$2 != "" { print ($2 ~ /^\//) ? $2 : $1 "/" $2 }' | sort -u
}

# That it reads a record aright.
cat >"$scratch/example" <<'END'
1 openat(AT_FDCWD</p>, "/home/u/.cache/x", O_WRONLY|O_CREAT, 0666) = 5</home/u/.cache/x>
1 openat(AT_FDCWD</p>, "here", O_RDWR|O_CREAT, 0666 <unfinished ...>
1 openat(7</q>, "there", O_RDWR) = 5</q/there>
1 openat(AT_FDCWD</p>, "/read", O_RDONLY|O_CLOEXEC) = 5</read>
1 mkdir("/not", 0777) = -1 EEXIST (File exists)
2 mkdir("/neither", 0777 <unfinished ...>
3 unlink("/with", 0 <unfinished ...>
2 <... mkdir resumed>) = -1 EEXIST (File exists)
3 <... unlink resumed>) = 0
1 renameat2(AT_FDCWD</p>, "/a", AT_FDCWD</p>, "/b", RENAME_NOREPLACE) = 0
1 symlink("text", "/link") = 0
1 unlink("/gone") = 0
1 fchmodat(AT_FDCWD</p>, "/mode", 0600) = 0
END
expect "the example" "$(written "$scratch/example" | tr '\n' ' ')" "/a /b /gone /home/u/.cache/x /link /mode /p/here /q/there /with "

# A lookup.
click "$main" 200 140 --repeat 2 --delay 60
wait_for 10 window_begins '../' || fail "no lookup window"
wait_until_still "$(window_begins '../')"
xdotool windowactivate --sync "$(window_begins '../')" key alt+F4

# A preset, a colour of one's own, and a new preset.
colors=$(open_by_button 509 'Edit Program Colors')
shot colors
click "$colors" 210 283
sleep 0.3
xdotool key Down Return
sleep 0.5
shot preset
click "$colors" 60 70
wait_for 5 window_titled 'Program: Text' || fail "no colour dialog"
sleep 0.3
shot dialog
xdotool key Return
closed() { ! window_titled "$1"; }
wait_for 5 closed 'Program: Text' || fail "the colour dialog stays"
click "$colors" 126 309
wait_for 5 window_titled 'Save Colors As Preset' || fail "no question for the preset's name"
sleep 0.3
shot save
xdotool type "of my own"
xdotool key Return
wait_for 5 test -f "color_presets/of my own.ini" || fail "no preset was saved"
xdotool windowactivate --sync "$colors" key alt+F4

# A contribution.
improve=$(open_by_button 275 'Improve Database')
click "$improve" 95 350
wait_until_still "$improve"
shot improve
click "$improve" 373 350
wait_for 10 test -s new_hardware.txt || fail "nothing was submitted; have the buttons moved?"
wait_until_still "$improve"
shot submitted
xdotool windowactivate --sync "$improve" key alt+F4

# An update.
update=$(open_by_button 390 'Updates')
wait_until_still "$update"
shot update
click "$update" 322 175
wait_for 20 closed 'Updates' || fail "the update does not end"
wait_until_still "$main"
shot updated

# The web site.
click "$main" 641 57
wait_for 5 test -s "$scratch/opened"
expect "browser" "$(cat "$scratch/opened")" "http://quorvane.example no bus"

# The end, by the close button.
click "$main" 717 19
wait_for 10 gone $tracer || { fail "the process does not end"; kill -TERM "$quorvane"; }
wait $tracer
expect "status" $? 0
exec 4>&-
wait $server
umask 022
record=$scratch/record

# 1. Files. The stage keeps its made-up machine in the temporary folder; the rest is the program's.
written "$record" >"$scratch/written"
grep -q "^$program/hwids.mdb$" "$scratch/written" || fail "the record holds no writes"
# Beside its own folder: the null device, which is its children's input, graphics cards, and what the browser writes.
surprises=$(grep -vE "^($program/|$scratch/tmp/|/dev/null$|/dev/dri/|$scratch/opened$)" "$scratch/written")
[ -z "$surprises" ] || fail "written outside: $surprises"
expect "left in the temporary folder" "$(ls -A "$scratch/tmp")" ""
expect "left in the home folder" "$(ls -A "$scratch/home")" ""
expect "files" "$(ls -A . color_presets | sort | comm -13 <(sort "$scratch/files_before") -)" \
  "hwids.7z
new_hardware.txt
of my own.ini"
for file in hwids.mdb hwids.7z new_hardware.txt "color_presets/of my own.ini"; do
  expect "mask of $file" "$(stat -c %a "$file")" 640
done
expect "mask of the user's own file" "$(stat -c %a settings.ini)" 644

# 2. The network. Sockets of the display, of its own machine's interfaces (a list of them, which netlink gives) and of its
# server; one connection for each request.
sockets=$(grep -E '^[0-9]+ +socket\(' "$record" | grep -vE 'socket\(AF_(UNIX|INET|NETLINK),.*(SOCK_STREAM|NETLINK_ROUTE)')
[ -z "$sockets" ] || fail "sockets: $sockets"
peers=$(grep -E '^[0-9]+ +(connect|sendto|sendmsg)\(.*sa_family=' "$record" | grep -vE \
  "sin_port=htons\($port\), sin_addr=inet_addr\(\"127.0.0.1\"\)|sun_path=@?\"/tmp/.X11-unix/|AF_NETLINK|/run/nscd/socket")
[ -z "$peers" ] || fail "peers: $peers"
expect "connections" "$(grep -cE "connect\(.*sin_port=htons\($port\)" "$record")" 5
get() { printf 'GET /files/updates/quorvane/%s HTTP/1.1\r\nHost: 127.0.0.1:%s\r\nUser-Agent: Quorvane\r\nAccept: */*\r\n\r\n' "$1" "$port"; }
upload() {
  local boundary=3fbd04f5-b1ed-4060-99b9-fca7ff59c113
  {
    printf -- '--%s\r\nContent-Disposition: multipart/form-data; name="uploadfile"; filename="new_hardware.txt"\r\n' $boundary
    printf 'Content-Type: application/octet-stream\r\n\r\n'
    cat new_hardware.txt
    printf '\r\n--%s--' $boundary
  } >"$scratch/body"
  printf 'POST /files/hardware_ids/upload_hardware_id_v1.php HTTP/1.0\r\nHost: 127.0.0.1:%s\r\nUser-Agent: Uploader\r\n' "$port"
  printf 'Content-Type: multipart/form-data; boundary=%s\r\nContent-Length: %s\r\n\r\n' $boundary "$(stat -c %s "$scratch/body")"
  cat "$scratch/body"
}
{ get database_v1.htm; upload; get update.htm; get database_v1.htm; get hwids.7z; } >"$scratch/expected"
cat "$scratch/requests/"* | cmp - "$scratch/expected" || fail "the requests are others"
# The rows that the window showed: devices with a driver, name and maker as they call themselves, and no more of them.
printf '%s\r\n' "USB\\VID_1234&PID_0001|||x'); DROP TABLE hwids; --|||Maker' OR '1'='1" \
  'USB\VID_1234&PID_0002|||../../../../tmp/$(id)|||"Quoted" | Maker' | cmp - new_hardware.txt || fail "rows: $(cat new_hardware.txt)"

# 3. Processes. The archive engine (a script where the package has it so) and the browser; the program itself is the last
# to end.
started=$(grep -E '^[0-9]+ +execve\("' "$record" | sed -E 's/^[0-9]+ +execve\("([^"]*)".*/\1/; s/.*\///' | sort -u | tr '\n' ' ')
case $started in
  '7z '*'quorvane xdg-open ' | '7za quorvane xdg-open ' | '7zz quorvane xdg-open ') ;;
  *) fail "started: $started" ;;
esac
expect "last to end" "$(tail -n 1 "$record" | tr -s " ")" "$quorvane +++ exited with 0 +++"

# 4. The new database is there whole.
expect "database" "$(sqlite3 hwids.mdb 'SELECT dbversion FROM version; PRAGMA integrity_check' | tr '\n' ' ')" "2.0.0 ok "

# 5. The tools: one writes nothing, though it opens the database as the program does; the other what it is told to. This is
# the machine's own device tree.
traced() { strace -f -q -y --seccomp-bpf -e trace=%file,%network,%process -e signal=none -o "$scratch/tool_record" "$@" >/dev/null 2>&1; }
before=$(cksum hwids.mdb)
traced "$QUORVANE_BIN/quorvane-list" --db hwids.mdb || fail "quorvane-list"
expect "written by quorvane-list" "$(written "$scratch/tool_record")" "$program/hwids.mdb"
expect "database beside quorvane-list" "$(cksum hwids.mdb)" "$before"
expect "sockets of quorvane-list" "$(grep -c 'socket(' "$scratch/tool_record")" 0
mkdir "$scratch/made"
traced "$QUORVANE_BIN/quorvane-db" build --pci-ids "$scratch/none.ids" --usb-ids "$scratch/none.ids" \
  --output "$scratch/made/hwids.mdb" || fail "quorvane-db"
expect "written by quorvane-db" "$(written "$scratch/tool_record" | grep -v "^$scratch/made/")" ""
expect "made by quorvane-db" "$(stat -c '%a %n' "$scratch/made/"*)" "644 $scratch/made/hwids.mdb"
expect "sockets of quorvane-db" "$(grep -c 'socket(' "$scratch/tool_record")" 0

# 6. An installed program fills its user's folder at the first start: with files of that user's mask.
mkdir -p "$scratch/prefix/bin" "$scratch/prefix/share/quorvane"
mv quorvane "$scratch/prefix/bin/"
cp -r hwids.mdb color_presets "$scratch/prefix/share/quorvane/"
chmod -R a+rX "$scratch/prefix"
(umask 077 && XDG_DATA_HOME=$scratch/data exec "$scratch/prefix/bin/quorvane") 2>>"$scratch/errors" &
pids+=($!)
wait_for 20 main_window || fail "an installed program does not start"
kill -TERM $!
wait $!
expect "mask of what is installed" "$(cd "$scratch/data/quorvane" && stat -c '%a %n' hwids.mdb color_presets/Dark.ini)" \
  "600 hwids.mdb
600 color_presets/Dark.ini"
[ ! -s "$scratch/errors" ] || fail "standard error: $(cat "$scratch/errors")"
[ -z "${SHOTS:-}" ] || cp "$record" "$SHOTS/record"
verdict "least surprise"
