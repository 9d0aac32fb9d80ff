#!/usr/bin/env bash
# The sessions of lookup.sh and keyboard.sh on a made-up PC: whatever a device is called, its name is no regular
# expression, glob, option or list.
set -u
here=$(dirname "$(readlink -f "$0")")
# Mounts of its own, which end with it.
if [ -z "${QUORVANE_OWN_MOUNTS:-}" ]; then
  unshare --mount true 2>/dev/null || { echo "SKIPPED: this user may not mount file systems"; exit 77; }
  QUORVANE_OWN_MOUNTS=1 exec unshare --mount --propagation private "$0"
fi
. "$here/made_up_machine.sh"
machine=$(mktemp -d)
trap 'rm -rf --one-file-system "$machine"' EXIT

names=('Intel(R) Xeon(R) Processor' 'a [*] [b-a] *' '-e --help' "it's \"quoted\"" 'one, two, three' '$(id) `id` \1' 'A.C' 'AbC'
  '^caret$' 'brace{1,9} | ?+' 'Prüf-Gerät')
{
  printf '/devices/pci0000:00/0000:00:02.0 @ bus/pci\n  %s\n' 'vendor = 0x8086'
  printf '  %s\n' 'device = 0x1237' 'class = 0x060000' 'driver -> /bus/pci/drivers/host'
  for index in "${!names[@]}"; do
    printf '/devices/pci0000:00/0000:00:14.0/usb1/1-%d @ bus/usb\n' $((index + 1))
    printf '  %s\n' 'idVendor = 1234' "idProduct = $((1000 + index))" 'bDeviceClass = 09' "product = ${names[index]}" \
      'manufacturer = Nobody' 'driver -> /bus/usb/drivers/usb'
  done
} >"$machine/text"
write_machine "$machine/text" "$machine/sys"
chmod 755 "$machine" "$machine/sys"
mount --bind "$machine/sys" /sys || exit 1

list=$("${QUORVANE_BIN:?}/quorvane-list")
status=0
for name in "${names[@]}"; do
  case $list in *"$name"*) ;; *) echo "FAILED: no device '$name'" >&2 && status=1 ;; esac
done
"$here/lookup.sh" || status=1
"$here/keyboard.sh" || status=1
umount /sys
exit $status
