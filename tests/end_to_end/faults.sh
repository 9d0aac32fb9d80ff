#!/usr/bin/env bash
# The real program with a broken surrounding: no database, something else in its place, settings of random bytes, a folder
# that cannot be written, a first start that fails or is cut off, requests to end at any moment, and a screen that goes
# away.
set -u
. "$(dirname "$0")/virtual_screen.sh"
need_tools Xvfb openbox xdotool xwd sqlite3
start_screen
make_program_folder
# Backslashes part folders for the program, but not in the name of its own.
mv "$program" "$scratch/back\\slash"
program=$scratch/back\\slash
build_database "$scratch/good.mdb"
cd "$program" || exit 1

# expect_fatal WHAT [COMMAND]: starts, waits for the box with the fatal message, closes it or asks the program to end, and
# expects a status other than 0.
expect_fatal() {
  ./quorvane 2>/dev/null &
  local quorvane=$!
  pids+=($quorvane)
  wait_for 20 window_titled 'Quorvane' || { fail "$1: no message"; kill -9 $quorvane; return; }
  if [ $# = 2 ]; then $2 $quorvane; else xdotool windowactivate --sync "$(window_titled 'Quorvane')" key Return; fi
  wait_for 10 gone $quorvane || { fail "$1: still running"; kill -9 $quorvane; }
  wait $quorvane
  [ $? != 0 ] || fail "$1: status 0"
}

rm -f hwids.mdb
expect_fatal "no database"
expect_fatal "asked to end below a box" "kill -TERM"
[ ! -e hwids.mdb ] || fail "a missing database was created"
echo "not a database" >hwids.mdb
expect_fatal "text file"
head -c 5000 "$scratch/good.mdb" >hwids.mdb
expect_fatal "truncated database"
rm hwids.mdb && mkdir hwids.mdb
expect_fatal "folder"
rmdir hwids.mdb

# Random settings are no settings: the program runs, and ends with status 0 when asked.
cp "$scratch/good.mdb" hwids.mdb
for content in /dev/null /dev/urandom; do
  head -c 20000 $content >settings.ini
  ./quorvane 2>/dev/null &
  quorvane=$!
  pids+=($quorvane)
  wait_for 20 main_window || fail "does not start with settings from $content"
  kill -TERM $quorvane
  wait_for 10 gone $quorvane || { fail "does not end"; kill -9 $quorvane; }
  wait $quorvane
  expect "status with settings from $content" $? 0
done
rm -f settings.ini

# An archive of half a kilobyte whose database would keep the program busy for ever, at every start: the update refuses
# it, and the start does where it stands there already.
mkdir "$scratch/bad"
sqlite3 -cmd '.dbconfig defensive off' "$scratch/bad/hwids.mdb" "CREATE TABLE hwids (hwid, info);
  CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename); CREATE TABLE mfgs (ID INTEGER PRIMARY KEY, mfg);
  CREATE TABLE version (x TEXT, dbversion TEXT AS (instr(hex(zeroblob(9)), hex(zeroblob(4)) || 'x')));
  INSERT INTO version VALUES ('9'); PRAGMA writable_schema=ON;
  UPDATE sqlite_schema SET sql = replace(replace(sql, '9', '30000000'), '4', '9000000')" >/dev/null
files=$scratch/served/files/updates/quorvane
mkdir -p "$files"
for engine in 7za 7zz 7z; do command -v $engine >/dev/null && break; done
$engine a "$files/hwids.7z" "$scratch/bad/hwids.mdb" >/dev/null || fail "no archive"
printf 9.0.0 >"$files/database_v1.htm"
start_server
export QUORVANE_STAGE=$scratch/machine
printf '/devices/none\n' >"$QUORVANE_STAGE"
cp "$QUORVANE_BIN/quorvane-staged" staged
./staged 2>"$scratch/errors" &
quorvane=$!
pids+=($quorvane)
wait_for 20 main_window || fail "no main window"
main=$(main_window)
wait_until_still "$main"
update=$(open_by_button 390 'Updates')
wait_until_still "$update"
click "$update" 322 175
wait_for 20 window_titled 'Quorvane' || fail "nothing is said of a crafted database"
xdotool windowactivate --sync "$(window_titled 'Quorvane')" key Return
wait_until_still "$main"
kill -TERM $quorvane
wait_for 10 gone $quorvane || { fail "an update with a crafted database keeps the program"; kill -9 $quorvane; }
wait $quorvane
expect "status after a crafted database" $? 0
cmp -s "$scratch/good.mdb" hwids.mdb || fail "a crafted database took the good one's place"
cp "$scratch/bad/hwids.mdb" .
expect_fatal "crafted database"
cp "$scratch/good.mdb" hwids.mdb
rm -f staged

# Asked to end at any moment of start-up and scan.
for delay in 0.05 0.1 0.15 0.2 0.25 0.3 0.4 0.5; do
  ./quorvane 2>"$scratch/errors" &
  quorvane=$!
  pids+=($quorvane)
  sleep $delay
  kill -TERM $quorvane
  wait_for 10 gone $quorvane || { fail "does not end after $delay s"; kill -9 $quorvane; }
  wait $quorvane
  status=$?
  # Before the program can listen, the signal ends it in the system's own way.
  [ $status = 0 ] || [ $status = 143 ] || fail "status $status after $delay s"
  [ "$(sqlite3 hwids.mdb 'PRAGMA integrity_check')" = ok ] || fail "database damaged after $delay s"
done

# The first start of an installed program, with room for no database and then killed while it copies one: what it leaves
# is nothing, and then what the next start makes whole.
mkdir -p "$scratch/prefix/bin" "$scratch/prefix/share/quorvane/color_presets"
cp quorvane "$scratch/prefix/bin/"
cd "$scratch/prefix/bin" || exit 1
export XDG_DATA_HOME=$scratch/data
cp "$scratch/good.mdb" ../share/quorvane/hwids.mdb
echo "[colors]" >../share/quorvane/color_presets/Some.ini
limit=$(ulimit -S -f)
ulimit -S -f 1000
expect_fatal "a limit on the size of files"
ulimit -S -f "$limit"
expect "after a first start without room" "$(find "$XDG_DATA_HOME" -type f)" ""
truncate -s 500M ../share/quorvane/hwids.mdb
./quorvane 2>/dev/null &
quorvane=$!
for _ in $(seq 1000); do compgen -G "$XDG_DATA_HOME/quorvane*/*" "$XDG_DATA_HOME/quorvane*/.f*/*" >/dev/null && break; done
kill -9 $quorvane
wait $quorvane 2>/dev/null
cp "$scratch/good.mdb" ../share/quorvane/hwids.mdb
./quorvane 2>/dev/null &
quorvane=$!
pids+=($quorvane)
wait_for 20 main_window || fail "no start after one that was cut off"
kill -TERM $quorvane
wait $quorvane
expect "after a first start that was cut off" "$(cd "$XDG_DATA_HOME" && find . -type f | sort)" \
  "$(printf './quorvane/%s\n' color_presets/Some.ini hwids.mdb)"
expect "folders" "$(ls -A "$XDG_DATA_HOME")" quorvane
cmp -s "$scratch/good.mdb" "$XDG_DATA_HOME/quorvane/hwids.mdb" || fail "the database was not copied whole"
cd "$program" || exit 1

# The X server goes away, at any moment of start-up and scan and later: the program ends with it, by itself.
for _ in $(seq "$(rounds 3 100)"); do
  Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$scratch/other" >/dev/null 2>&1 &
  screen=$!
  pids+=($screen)
  wait_for 10 test -s "$scratch/other"
  DISPLAY=":$(cat "$scratch/other")" ./quorvane 2>"$scratch/errors" &
  quorvane=$!
  pids+=($quorvane)
  sleep "$((RANDOM % 2)).$((RANDOM % 10))"
  kill -9 $screen
  wait_for 20 gone $quorvane || { fail "outlives its screen"; kill -9 $quorvane; }
  wait $quorvane
  status=$?
  # Without a screen from the first moment the toolkit ends the program, before it has touched anything.
  grep -q 'no Qt platform plugin could be initialized' "$scratch/errors" ||
    [ $status -lt 128 ] || fail "status $status without a screen: $(tail -n 3 "$scratch/errors")"
  wait $screen 2>/dev/null
  rm -f "$scratch/other"
  [ "$(sqlite3 hwids.mdb 'PRAGMA integrity_check')" = ok ] || fail "database damaged without a screen"
done

verdict faults
