# Runs in the machine: installs the package, lets the devices come up, and writes what the machine says of itself and what
# the program says of it; then provokes what the machine's file tells and writes it all once more.
# shellcheck shell=bash
exchange=$1
export PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8
cd /run/work || exit
mkdir report

# The attributes that tell what a device is, and the links that tell its bus, its driver and its firmware node.
texts=(idVendor idProduct bcdDevice bDeviceClass bDeviceSubClass bDeviceProtocol bNumInterfaces bInterfaceNumber
  bInterfaceClass bInterfaceSubClass iad_bFirstInterface authorized driver_override type vendor model rev state firmware_rev
  name subsystem_vendor subsystem_device manfid oemid hwrev fwrev vendor_id subsystem_id revision_id hid uid hrv status id modalias)
links=(subsystem driver physical_node firmware_node)
binaries=(report_descriptor edid vpd_pg89)

# by_name NAME...: as find asks for it.
by_name() { printf -- '-name %s -o ' "$@"; echo '-false'; }

# describe FOLDER: the machine's word and the program's.
describe() {
  mkdir "report/$1"
  cd "report/$1" || return
  lspci -Dvmmnnk >lspci
  lsusb >lsusb
  cp /proc/cpuinfo /proc/modules .
  cat /lib/modprobe.d/*.conf /etc/modprobe.d/*.conf >modprobe.conf 2>/dev/null
  # shellcheck disable=SC2046
  {
    find /sys/devices -type f \( $(by_name "${texts[@]}") \) -exec grep -sHaZ '' {} + | tr '\0' '\t' >texts
    find /sys/devices -type l \( $(by_name "${links[@]}") \) -printf '%p\t%l\n' >links
    find /sys/devices -type f \( $(by_name "${binaries[@]}") \) | while read -r file; do
      printf '%s\t%s\n' "$file" "$(od -An -v -tx1 "$file" | tr -d ' \n')"
    done >binaries
  }
  quorvane-list --list all --format json >lists.json || echo "quorvane-list --format json: $?"
  cd /run/work || return
}

settle() {
  udevadm settle
  # Sound and graphics load modules of their own a moment later.
  sleep 2
  udevadm settle
}

# device SUBSYSTEM IDS: the folder of the only device with these IDs, such as "pci 8086:100E" or "usb 0627:0001".
device() {
  local folder key=PCI_ID=${2^^}
  [ "$1" = pci ] || key=PRODUCT=$(sed 's/\<0*//g; s|:|/|' <<<"$2")/
  for folder in "/sys/bus/$1/devices"/*; do
    ! grep -q "^$key" "$folder/uevent" || [ -e "$folder/bInterfaceNumber" ] || echo "$folder"
  done
}

time_of() { cut -d. -f1 /proc/uptime; }

cp "/lib/modules/$(uname -r)/modules.alias" report
ip link set lo up 2>/dev/null
dpkg -i quorvane.deb || echo "the package cannot be installed"
/lib/systemd/systemd-udevd --daemon
udevadm trigger --type=subsystems --action=add
udevadm trigger --type=devices --action=add
settle
echo "up $(time_of)" >report/times
describe ordinary
for list in hardware nodrivers problems nosystem; do
  quorvane-list --list $list >report/ordinary/$list.csv || echo "quorvane-list --list $list: $?"
done
echo "described $(time_of)" >>report/times
if [ -s provoke.sh ]; then
  . ./provoke.sh
  settle
  describe provoked
fi
tar -cf "$exchange" -C report .
