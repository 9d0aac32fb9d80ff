"""What a machine says of itself, and the rows that follow from it: worked out from lspci and /sys independently of the
program, with which hardware IDs, driver and problem code.
"""
import collections
import fnmatch
import os
import re

Row = collections.namedtuple("Row", "place ids driver code")


def lines(path):
    with open(path, encoding="utf-8", errors="replace", newline="\n") as file:
        return file.read().splitlines()


def cut(text, width):
    """A field of a disk's ID: blanks, commas and what is not printable become "_", as does what is missing."""
    return re.sub(r"[^!-+\--~]", "_", text[:width]).ljust(width, "_")


class Machine:
    """What a machine said of itself at one moment: each folder's attributes, links and binary attributes."""

    def __init__(self, report, moment):
        def pairs(name):
            for line in lines(f"{report}/{moment}/{name}"):
                path, _, value = line.partition("\t")
                yield *os.path.split(path), value.replace("\0", "").rstrip()

        self.report, self.moment = report, moment
        self.texts = collections.defaultdict(dict)
        self.links = collections.defaultdict(dict)
        self.bytes = collections.defaultdict(dict)
        for folder, name, value in pairs("texts"):
            known = self.texts[folder].get(name)
            self.texts[folder][name] = value if known is None else f"{known} {value}"
        for folder, name, value in pairs("links"):
            self.links[folder][name] = os.path.normpath(os.path.join(folder, value))
        for folder, name, value in pairs("binaries"):
            self.bytes[folder][name] = bytes.fromhex(value)
        self.fits = {}  # the modules that fit what has no driver and needs one
        self.loaded = {line.split()[0] for line in self.read("modules")}
        self.blacklist = {line.split()[1].replace("-", "_") for line in self.read("modprobe.conf")
                          if line.startswith("blacklist ")}

    def read(self, name):
        return lines(f"{self.report}/{self.moment}/{name}")

    def on(self, bus):
        """The folders of the devices on a bus."""
        return sorted(f for f, links in self.links.items() if os.path.basename(links.get("subsystem", "")) == bus)

    def driver(self, folder):
        return os.path.basename(self.links[folder].get("driver", ""))

    def fitting(self, alias):
        """The modules that fit a device's alias."""
        found = set()
        for line in lines(f"{self.report}/modules.alias"):
            words = line.split()
            if words[:1] == ["alias"] and words[1][:4] == alias[:4] and fnmatch.fnmatchcase(alias, words[1]):
                found.add(words[2].replace("-", "_"))
        return found

    def row(self, folder, ids, functional=None, needs_driver=True, driver=None):
        """`functional`: the folder that the driver is bound to, if that is another one."""
        texts, functional = self.texts[folder], functional or folder
        driver = self.driver(functional) if driver is None else driver
        place = os.path.basename(self.links[folder].get("subsystem", "")), os.path.basename(folder)
        override = texts.get("driver_override", "(null)")
        if texts.get("authorized") == "0" or override not in ("(null)", "", driver):
            code = 22
        elif texts.get("state") in ("offline", "dead"):
            code = 43
        elif driver or not needs_driver:
            code = 0
        else:
            modules = self.fits[place] = self.fitting(self.texts[functional].get("modalias", ""))
            code = (28 if not modules else 10 if modules & self.loaded else 32 if modules & self.blacklist else 31)
        return Row(place, tuple(ids), driver, code)

    def rows(self):
        readers = (self.processors, self.acpi, self.pnp, self.pci, self.usb, self.hid, self.scsi, self.nvme,
                   self.block, self.mmc, self.codecs, self.monitors)
        return [row for reader in readers for row in reader()]

    def processors(self):
        info = dict(re.findall(r"^(\S[^\t:]*?)\s*: ?(.*)$", "\n".join(self.read("cpuinfo")), re.M))
        wide = {"GenuineIntel": "Intel64"}.get(info["vendor_id"], "AMD64") if " lm " in info["flags"] else "x86"
        kind = f"{info['vendor_id']}_-_{wide}"
        family = f"{kind}_Family_{info['cpu family']}"
        names = (f"{family}_Model_{info['model']}", family, kind)
        for folder in self.on("cpu"):
            if re.search(r"/cpu\d+$", folder):
                yield self.row(folder, [f"{start}{name}" for name in names for start in ("ACPI\\", "*")],
                               needs_driver=False)

    @staticmethod
    def acpi_ids(names, revision=""):
        ids = []
        for at, name in enumerate(names):
            if re.fullmatch(r"[A-Z0-9]{3,4}[A-Z0-9]{4}", name):
                product = f"ACPI\\VEN_{name[:-4]}&DEV_{name[-4:]}"
                ids += ([f"{product}&REV_{int(revision):04X}"] if revision and at == 0 else []) + [product]
            ids += [f"ACPI\\{name}", f"*{name}"]
        return list(dict.fromkeys(ids))

    def acpi(self):
        for folder in self.on("acpi"):
            texts = self.texts[folder]
            own = [texts["hid"]] if "hid" in texts else []
            names = list(dict.fromkeys(own + texts.get("modalias", "").split(":")[1:]))
            names = [name.upper() for name in names if name and not name.startswith("LNX")]
            bodies = [at for name, at in sorted(self.links[folder].items()) if name.startswith("physical_node")]
            elsewhere = any(os.path.basename(self.links[at].get("subsystem", "")) in ("pci", "cpu") for at in bodies)
            present = int(texts.get("status", "15")) & 1
            hidden = re.match("LNX|device:", os.path.basename(folder))
            if names and present and not elsewhere and not hidden and names[0] != "ACPI0007":
                if "PNP0700" in names:  # the floppy driver makes a device of its own for the controller
                    bodies.append("/sys/devices/platform/floppy.0")
                # Which kinds need a driver is the program's knowledge; none of these machines lacks one.
                driver = next(filter(None, map(self.driver, [folder] + bodies)), "")
                yield self.row(folder, self.acpi_ids(names, texts.get("hrv")), None, False, driver)

    def pnp(self):
        for folder in self.on("pnp"):
            if "firmware_node" not in self.links[folder] and "id" in self.texts[folder]:
                yield self.row(folder, self.acpi_ids(self.texts[folder]["id"].upper().split()), needs_driver=False)

    def pci(self):
        for record in "\n".join(self.read("lspci")).split("\n\n"):
            fields = dict(line.split(":\t") for line in record.splitlines() if ":\t" in line)
            if not fields:
                continue
            numbers = {key: re.findall(r"\[([0-9a-f]{4})\]$", value)[0].upper() for key, value in fields.items()
                       if key in ("Class", "Vendor", "Device", "SVendor", "SDevice")}
            product = f"PCI\\VEN_{numbers['Vendor']}&DEV_{numbers['Device']}"
            folder = next(f for f in self.on("pci") if os.path.basename(f) == fields["Slot"])
            # lspci tells no subsystem whose vendor is 0.
            board = [numbers.get(key) or self.texts[folder].get(name, "0x0000")[2:].upper()
                     for key, name in (("SDevice", "subsystem_device"), ("SVendor", "subsystem_vendor"))]
            board = "&SUBSYS_" + "".join(board)
            revision = f"&REV_{fields.get('Rev', '00').upper()}"
            kind = f"&CC_{numbers['Class']}"
            ids = [product + board + revision, product + board, product + kind + fields.get("ProgIf", "00").upper(),
                   product + kind, product + revision, product]
            base, subclass = numbers["Class"][:2], numbers["Class"][2:]
            own = numbers["Vendor"] in ("8086", "1022")
            needs = not (base == "05" or base == "06" and subclass not in ("07", "80") or
                         base == "08" and subclass != "05" and (subclass != "80" or own))
            # What a virtio function does is the work of the device below it.
            virtio = [f for f in self.on("virtio") if os.path.dirname(f) == folder]
            yield self.row(folder, ids, (virtio or [None])[0], needs)

    def composite(self, folder):
        texts = self.texts[folder]
        kind = texts.get("bDeviceClass", ""), texts.get("bDeviceSubClass"), texts.get("bDeviceProtocol")
        return int(texts.get("bNumInterfaces") or 0) > 1 and (kind[0] == "00" or kind == ("ef", "02", "01"))

    def usb_ids(self, folder):
        texts = self.texts[folder]
        return (f"VID_{texts['idVendor']}&PID_{texts['idProduct']}".upper(), f"&REV_{texts['bcdDevice']}".upper())

    def usb(self):
        devices = [f for f in self.on("usb") if re.search(r"/\d+-[\d.]+$", f)]
        for folder in devices:
            product, revision = self.usb_ids(folder)
            interfaces = [f for f in self.on("usb") if os.path.dirname(f) == folder and ":" in os.path.basename(f)]
            composite = self.composite(folder)
            yield self.row(folder, [f"USB\\{product}{revision}", f"USB\\{product}"],
                           interfaces[0] if interfaces and not composite else folder,
                           not interfaces or self.texts[interfaces[0]]["bInterfaceClass"] not in ("06", "07", "0b"))
            audio = False
            for interface in interfaces if composite else []:
                texts = self.texts[interface]
                joined = texts.get("iad_bFirstInterface", texts["bInterfaceNumber"]) != texts["bInterfaceNumber"]
                # Without an association, streams belong to the control interface before them.
                streams = audio and texts["bInterfaceClass"] == "01" and texts["bInterfaceSubClass"] != "01"
                audio = texts["bInterfaceClass"] == "01"
                if not joined and not streams:
                    part = f"&MI_{texts['bInterfaceNumber'].upper()}"
                    yield self.row(interface, [f"USB\\{product}{revision}{part}", f"USB\\{product}{part}"], None,
                                   texts["bInterfaceClass"] not in ("06", "07", "0b"))

    @staticmethod
    def collections(descriptor):
        """The usage page and usage of each top-level collection of a HID device."""
        page, usages, depth, at = 0, [], 0, 0
        while at < len(descriptor):
            head = descriptor[at]
            size = (0, 1, 2, 4)[head & 3]
            value = int.from_bytes(descriptor[at + 1:at + 1 + size], "little")
            if head & 0xFC == 0x04:
                page = value
            elif head & 0xFC == 0x08:
                usages.append((value >> 16, value & 0xFFFF) if size == 4 else (page, value))
            elif head & 0xFC == 0xA0:
                depth += 1
                if depth == 1:
                    yield usages[0] if usages else (0, 0)
            elif head & 0xFC == 0xC0:
                depth -= 1
            if head & 0x0C == 0:  # a main item ends what was told for it alone
                usages = []
            at += 1 + size

    def hid(self):
        systems = {(1, 1): "MOUSE", (1, 2): "MOUSE", (1, 4): "GAME", (1, 5): "GAME", (1, 6): "KEYBOARD",
                   (1, 7): "KEYBOARD", (1, 0x80): "CONTROL", (0x0C, 1): "CONSUMER"}
        for folder in self.on("hid"):
            interface = os.path.dirname(folder)
            device = os.path.dirname(interface)
            product, revision = self.usb_ids(device)
            part = f"&MI_{self.texts[interface]['bInterfaceNumber'].upper()}" if self.composite(device) else ""
            usages = list(self.collections(self.bytes[folder]["report_descriptor"]))
            for at, usage in enumerate(usages):
                part_of = part + (f"&Col{at + 1:02}" if len(usages) > 1 else "")
                use = "UP:%04X_U:%04X" % usage
                ids = [f"HID\\{product}{revision}{part_of}", f"HID\\{product}{part_of}",
                       f"HID\\{product.split('&')[0]}&{use}"]
                ids += [f"HID_DEVICE_SYSTEM_{systems[usage]}"] if usage in systems else []
                yield self.row(folder, ids + [f"HID_DEVICE_{use}", "HID_DEVICE"])

    @staticmethod
    def disk_ids(start, kind, generic, vendor, product, revision):
        name = cut(vendor, 8) + cut(product, 16)
        ids = [f"{start}{kind}{name}{cut(revision, 4)}", f"{start}{kind}{name}"]
        ids += [f"{start}{kind}{cut(vendor, 8)}"] if vendor and vendor != "NVMe" else []
        ids += [f"{start}{name}{cut(revision, 1)}", f"{name}{cut(revision, 1)}"]
        return ids + ([start + generic] if start == "USBSTOR\\" else []) + [generic]

    def scsi(self):
        for folder in self.on("scsi"):
            texts = self.texts[folder]
            if not re.search(r"/\d+:\d+:\d+:\d+$", folder) or texts["type"] not in ("0", "5"):
                continue
            kind, generic = {"0": ("Disk", "GenDisk"), "5": ("CdRom", "GenCdRom")}[texts["type"]]
            vendor, product = texts["vendor"], texts["model"]
            if vendor == "ATA":
                identity = self.bytes[folder].get("vpd_pg89", b"")[60:]
                if len(identity) >= 94:  # 40 characters, two to a word, the second one first
                    words = identity[54:94]
                    product = bytes(words[at ^ 1] for at in range(40)).decode("latin-1").rstrip()
                first, blank, rest = product.partition(" ")
                vendor, product = (first, rest) if blank and len(first) < 8 else ("", product)
            usb = [f for f in self.on("usb") if folder.startswith(f + "/") and self.driver(f) == "usb-storage"]
            yield self.row(folder, self.disk_ids("USBSTOR\\" if usb else "SCSI\\", kind, generic, vendor, product,
                                                 texts["rev"]))

    def nvme(self):
        for folder in self.on("nvme"):
            texts = self.texts[folder]
            model, revision = texts["model"], texts["firmware_rev"]
            whole = f"SCSI\\DiskNVMe____{cut(model, 40)}"
            yield self.row(folder, [whole + cut(revision, 8), whole] +
                           self.disk_ids("SCSI\\", "Disk", "GenDisk", "NVMe", model, revision), None, False,
                           self.driver(self.links[folder].get("device", os.path.dirname(os.path.dirname(folder)))))

    def block(self):
        for folder in self.on("block"):
            owner = os.path.dirname(os.path.dirname(folder))
            if re.search(r"/vd[a-z]+$", folder):
                yield self.row(folder, self.disk_ids("SCSI\\", "Disk", "GenDisk", "Red Hat", "VirtIO", "0001"), owner)
            elif re.search(r"/fd\d+$", folder):
                yield self.row(folder, [], owner)

    def mmc(self):
        for folder in self.on("mmc"):
            texts = self.texts[folder]
            product = (f"SD\\VID_{int(texts['manfid'], 16):02X}&OID_{int(texts['oemid'], 16):04X}"
                       f"&PID_{texts['name']}")
            version = f"&REV_{int(texts['hwrev'], 16)}.{int(texts['fwrev'], 16)}"
            yield self.row(folder, [product + version, product])

    def codecs(self):
        for folder in self.on("hdaudio"):
            vendor, board, revision = (int(self.texts[folder][f"{key}_id"], 16)
                                       for key in ("vendor", "subsystem", "revision"))
            product = f"HDAUDIO\\FUNC_01&VEN_{vendor >> 16:04X}&DEV_{vendor & 0xFFFF:04X}"
            version = f"&REV_{revision >> 8 & 0xFFFF:04X}"
            yield self.row(folder, [f"{product}&SUBSYS_{board:08X}{version}", f"{product}&SUBSYS_{board:08X}",
                                    product + version, product])

    def monitors(self):
        for folder in self.on("drm"):
            edid = self.bytes[folder].get("edid", b"")
            if self.texts[folder].get("status") == "connected" and len(edid) >= 128:
                maker = int.from_bytes(edid[8:10], "big")
                letters = "".join(chr(64 + (maker >> shift & 31)) for shift in (10, 5, 0))
                product = int.from_bytes(edid[10:12], "little")
                yield self.row(folder, [f"MONITOR\\{letters}{product:04X}"], needs_driver=False)
