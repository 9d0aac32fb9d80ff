#include "suite/icon_glyphs.h"

#include <QPainter>
#include <QPixmapCache>
#include <array>

namespace suite {

namespace {

enum class Kind {
    Box,  // x, y, width, height, corner radius
    Dot,  // centre x, centre y, radius
    Line, // x, y, x, y
    Arc,  // centre x, centre y, radius, start in degrees from three o'clock, span counter-clockwise
    Poly, // count of points, then x and y of each, at most six
};

enum class Tone { None, Ink, Body, Shade, White, Blue, Sky, Green, Amber, Dark };

constexpr double field = 16;

// Coordinates are those of a square field of that side; half coordinates put thin lines on whole pixels at 16 and 32.
struct Shape {
    Glyph glyph;
    Kind kind;
    Tone fill;
    Tone line;
    std::array<float, 13> n;
};

using enum Kind;
using G = Glyph;
using T = Tone;

constexpr std::array shapes = {
    Shape{G::Unknown, Box, T::Body, T::Ink, {2.5F, 1.5F, 11, 13, 1.5F}},
    Shape{G::Unknown, Arc, T::None, T::Blue, {8, 6, 2.2F, 190, -235}},
    Shape{G::Unknown, Line, T::None, T::Blue, {8, 8.6F, 8, 9.6F}},
    Shape{G::Unknown, Dot, T::Blue, T::None, {8, 12, 1}},

    Shape{G::Computer, Box, T::Shade, T::Ink, {10.5F, 1.5F, 4, 13, 0.5F}},
    Shape{G::Computer, Dot, T::Green, T::None, {12.5F, 12, 0.8F}},
    Shape{G::Computer, Line, T::None, T::Ink, {11.8F, 4.5F, 13.2F, 4.5F}},
    Shape{G::Computer, Box, T::Body, T::Ink, {0.5F, 3.5F, 11, 8, 1}},
    Shape{G::Computer, Box, T::Blue, T::None, {2, 5, 8, 5, 0}},
    Shape{G::Computer, Line, T::None, T::Ink, {3.5F, 13.5F, 8.5F, 13.5F}},

    Shape{G::Processor, Line, T::None, T::Amber, {5.5F, 1, 5.5F, 15}},
    Shape{G::Processor, Line, T::None, T::Amber, {8, 1, 8, 15}},
    Shape{G::Processor, Line, T::None, T::Amber, {10.5F, 1, 10.5F, 15}},
    Shape{G::Processor, Line, T::None, T::Amber, {1, 5.5F, 15, 5.5F}},
    Shape{G::Processor, Line, T::None, T::Amber, {1, 8, 15, 8}},
    Shape{G::Processor, Line, T::None, T::Amber, {1, 10.5F, 15, 10.5F}},
    Shape{G::Processor, Box, T::Dark, T::Ink, {3.5F, 3.5F, 9, 9, 1}},
    Shape{G::Processor, Box, T::Shade, T::None, {6, 6, 4, 4, 0.5F}},

    Shape{G::System, Box, T::Green, T::Ink, {1.5F, 1.5F, 13, 13, 1}},
    Shape{G::System, Line, T::None, T::Body, {4, 11, 4, 13}},
    Shape{G::System, Line, T::None, T::Body, {6, 11, 6, 13}},
    Shape{G::System, Line, T::None, T::Body, {8, 11, 8, 13}},
    Shape{G::System, Line, T::None, T::Body, {11.5F, 4, 13.5F, 4}},
    Shape{G::System, Line, T::None, T::Body, {11.5F, 6.5F, 13.5F, 6.5F}},
    Shape{G::System, Box, T::Dark, T::Ink, {3.5F, 3.5F, 6, 6, 0.5F}},
    Shape{G::System, Box, T::Amber, T::None, {11, 10, 2, 3, 0}},

    Shape{G::Chip, Line, T::None, T::Shade, {2, 4.5F, 14, 4.5F}},
    Shape{G::Chip, Line, T::None, T::Shade, {2, 8, 14, 8}},
    Shape{G::Chip, Line, T::None, T::Shade, {2, 11.5F, 14, 11.5F}},
    Shape{G::Chip, Box, T::Dark, T::Ink, {4.5F, 1.5F, 7, 13, 1}},
    Shape{G::Chip, Dot, T::White, T::None, {6.5F, 3.6F, 0.8F}},

    Shape{G::Memory, Box, T::Green, T::Ink, {0.5F, 4.5F, 15, 6, 0.5F}},
    Shape{G::Memory, Box, T::Dark, T::None, {2, 6, 3, 3, 0}},
    Shape{G::Memory, Box, T::Dark, T::None, {6.5F, 6, 3, 3, 0}},
    Shape{G::Memory, Box, T::Dark, T::None, {11, 6, 3, 3, 0}},
    Shape{G::Memory, Box, T::Amber, T::None, {1.5F, 11, 5.5F, 1.5F, 0}},
    Shape{G::Memory, Box, T::Amber, T::None, {8.5F, 11, 6, 1.5F, 0}},

    Shape{G::Display, Box, T::Shade, T::Ink, {0.5F, 2.5F, 2, 12, 0}},
    Shape{G::Display, Box, T::Amber, T::None, {5, 12, 7, 2, 0}},
    Shape{G::Display, Box, T::Green, T::Ink, {2.5F, 4.5F, 13, 7.5F, 0.5F}},
    Shape{G::Display, Dot, T::Dark, T::Ink, {8, 8.2F, 2.8F}},
    Shape{G::Display, Dot, T::Body, T::None, {8, 8.2F, 1}},
    Shape{G::Display, Box, T::Body, T::None, {12, 6, 2, 4.5F, 0}},

    Shape{G::Monitor, Poly, T::Shade, T::Ink, {4, 6.5F, 11, 9.5F, 11, 11, 14.5F, 5, 14.5F}},
    Shape{G::Monitor, Box, T::Body, T::Ink, {0.5F, 1.5F, 15, 10, 1}},
    Shape{G::Monitor, Box, T::Sky, T::None, {2, 3, 12, 7, 0}},
    Shape{G::Monitor, Line, T::None, T::White, {4, 7.5F, 7, 4.5F}},

    Shape{G::Disk, Box, T::Body, T::Ink, {0.5F, 4.5F, 15, 8, 1.5F}},
    Shape{G::Disk, Box, T::Shade, T::None, {1, 9, 14, 3, 1}},
    Shape{G::Disk, Line, T::None, T::Ink, {2.5F, 10.5F, 8, 10.5F}},
    Shape{G::Disk, Dot, T::Green, T::None, {12.8F, 10.5F, 1}},

    Shape{G::Volume, Box, T::Body, T::Ink, {0.5F, 5.5F, 15, 8, 1.5F}},
    Shape{G::Volume, Box, T::Blue, T::None, {2.5F, 8, 7, 3, 0}},
    Shape{G::Volume, Box, T::Shade, T::None, {9.5F, 8, 4, 3, 0}},
    Shape{G::Volume, Line, T::None, T::Ink, {3, 3.5F, 13, 3.5F}},

    Shape{G::Optical, Dot, T::Body, T::Ink, {8, 8, 7}},
    Shape{G::Optical, Arc, T::None, T::Sky, {8, 8, 4.8F, 20, 60}},
    Shape{G::Optical, Arc, T::None, T::Sky, {8, 8, 4.8F, 200, 60}},
    Shape{G::Optical, Dot, T::Blue, T::Ink, {8, 8, 2.5F}},
    Shape{G::Optical, Dot, T::White, T::None, {8, 8, 1}},

    Shape{G::Floppy, Box, T::Blue, T::Ink, {1.5F, 1.5F, 13, 13, 1}},
    Shape{G::Floppy, Box, T::Shade, T::None, {4.5F, 2, 7, 4, 0}},
    Shape{G::Floppy, Box, T::Dark, T::None, {9, 2.5F, 1.5F, 3, 0}},
    Shape{G::Floppy, Box, T::White, T::None, {3.5F, 8.5F, 9, 5.5F, 0}},
    Shape{G::Floppy, Line, T::None, T::Shade, {5, 10.5F, 11, 10.5F}},
    Shape{G::Floppy, Line, T::None, T::Shade, {5, 12.5F, 11, 12.5F}},

    Shape{G::StorageController, Box, T::Amber, T::None, {3, 11, 9, 2, 0}},
    Shape{G::StorageController, Box, T::Green, T::Ink, {0.5F, 2.5F, 15, 8.5F, 0.5F}},
    Shape{G::StorageController, Box, T::Dark, T::None, {2.5F, 4.5F, 4.5F, 4.5F, 0}},
    Shape{G::StorageController, Box, T::Body, T::Ink, {9.5F, 4.5F, 4, 1.5F, 0}},
    Shape{G::StorageController, Box, T::Body, T::Ink, {9.5F, 7.5F, 4, 1.5F, 0}},

    Shape{G::Keyboard, Box, T::Body, T::Ink, {0.5F, 3.5F, 15, 9, 1}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {2, 5, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {5, 5, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {8, 5, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {11, 5, 3, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {2, 7.4F, 3, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {6, 7.4F, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {9, 7.4F, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Ink, T::None, {12, 7.4F, 2, 1.6F, 0}},
    Shape{G::Keyboard, Box, T::Blue, T::None, {4, 9.9F, 8, 1.6F, 0}},

    Shape{G::Mouse, Box, T::Body, T::Ink, {3.5F, 1.5F, 9, 13, 4.5F}},
    Shape{G::Mouse, Line, T::None, T::Ink, {3.5F, 7.5F, 12.5F, 7.5F}},
    Shape{G::Mouse, Line, T::None, T::Ink, {8, 1.5F, 8, 7.5F}},
    Shape{G::Mouse, Box, T::Blue, T::None, {7, 3.5F, 2, 3, 1}},

    Shape{G::Hid, Box, T::Dark, T::Ink, {0.5F, 4.5F, 15, 8, 4}},
    Shape{G::Hid, Line, T::None, T::White, {3, 8.5F, 7, 8.5F}},
    Shape{G::Hid, Line, T::None, T::White, {5, 6.5F, 5, 10.5F}},
    Shape{G::Hid, Dot, T::Amber, T::None, {10.2F, 9.5F, 1.1F}},
    Shape{G::Hid, Dot, T::Sky, T::None, {12.4F, 7.4F, 1.1F}},

    Shape{G::Sound,
          Poly,
          T::Body,
          T::Ink,
          {6, 1.5F, 5.5F, 4.5F, 5.5F, 8.5F, 1.5F, 8.5F, 14.5F, 4.5F, 10.5F, 1.5F, 10.5F}},
    Shape{G::Sound, Arc, T::None, T::Blue, {8.5F, 8, 3, -50, 100}},
    Shape{G::Sound, Arc, T::None, T::Blue, {8.5F, 8, 6, -50, 100}},

    Shape{G::Network, Box, T::Body, T::Ink, {1.5F, 1.5F, 13, 10, 1}},
    Shape{G::Network, Poly, T::Dark, T::None, {6, 4, 9.5F, 4, 5.5F, 6, 3.5F, 10, 3.5F, 12, 5.5F, 12, 9.5F}},
    Shape{G::Network, Line, T::None, T::Amber, {6.5F, 9.5F, 6.5F, 7.5F}},
    Shape{G::Network, Line, T::None, T::Amber, {8, 9.5F, 8, 7.5F}},
    Shape{G::Network, Line, T::None, T::Amber, {9.5F, 9.5F, 9.5F, 7.5F}},
    Shape{G::Network, Line, T::None, T::Blue, {8, 11.5F, 8, 13.5F}},
    Shape{G::Network, Line, T::None, T::Blue, {2, 14.5F, 14, 14.5F}},
    Shape{G::Network, Dot, T::Blue, T::None, {8, 14.2F, 1.4F}},

    Shape{G::Wireless, Arc, T::None, T::Blue, {8, 12.5F, 10, 45, 90}},
    Shape{G::Wireless, Arc, T::None, T::Blue, {8, 12.5F, 6.5F, 45, 90}},
    Shape{G::Wireless, Arc, T::None, T::Blue, {8, 12.5F, 3.2F, 45, 90}},
    Shape{G::Wireless, Dot, T::Blue, T::None, {8, 13, 1.4F}},

    Shape{G::Bluetooth, Box, T::Blue, T::None, {3, 0.5F, 10, 15, 5}},
    Shape{G::Bluetooth, Line, T::None, T::White, {8, 3, 8, 13}},
    Shape{G::Bluetooth, Line, T::None, T::White, {8, 3, 10.8F, 5.6F}},
    Shape{G::Bluetooth, Line, T::None, T::White, {10.8F, 5.6F, 5.2F, 10.4F}},
    Shape{G::Bluetooth, Line, T::None, T::White, {8, 13, 10.8F, 10.4F}},
    Shape{G::Bluetooth, Line, T::None, T::White, {10.8F, 10.4F, 5.2F, 5.6F}},

    Shape{G::Modem, Line, T::None, T::Ink, {12.5F, 1.5F, 12.5F, 8}},
    Shape{G::Modem, Arc, T::None, T::Blue, {12.5F, 2.5F, 4, 150, 60}},
    Shape{G::Modem, Arc, T::None, T::Blue, {12.5F, 2.5F, 7, 155, 50}},
    Shape{G::Modem, Box, T::Body, T::Ink, {0.5F, 8.5F, 15, 5, 1}},
    Shape{G::Modem, Dot, T::Green, T::None, {3.5F, 11, 0.9F}},
    Shape{G::Modem, Dot, T::Green, T::None, {6.5F, 11, 0.9F}},
    Shape{G::Modem, Dot, T::Amber, T::None, {9.5F, 11, 0.9F}},

    Shape{G::Usb, Line, T::None, T::Blue, {8, 13, 8, 3}},
    Shape{G::Usb, Poly, T::Blue, T::None, {3, 8, 0.5F, 10.2F, 4, 5.8F, 4}},
    Shape{G::Usb, Dot, T::Blue, T::None, {8, 13.4F, 2}},
    Shape{G::Usb, Line, T::None, T::Blue, {8, 11, 4, 8.5F}},
    Shape{G::Usb, Line, T::None, T::Blue, {4, 8.5F, 4, 6.5F}},
    Shape{G::Usb, Dot, T::Blue, T::None, {4, 6, 1.5F}},
    Shape{G::Usb, Line, T::None, T::Blue, {8, 9.5F, 12, 7}},
    Shape{G::Usb, Line, T::None, T::Blue, {12, 7, 12, 5}},
    Shape{G::Usb, Box, T::Blue, T::None, {10.6F, 3.2F, 2.8F, 2.8F, 0}},

    Shape{G::Ports, Poly, T::Body, T::Ink, {4, 0.5F, 4.5F, 15.5F, 4.5F, 13.5F, 12.5F, 2.5F, 12.5F}},
    Shape{G::Ports, Dot, T::Ink, T::None, {3.6F, 7, 0.85F}},
    Shape{G::Ports, Dot, T::Ink, T::None, {5.8F, 7, 0.85F}},
    Shape{G::Ports, Dot, T::Ink, T::None, {8, 7, 0.85F}},
    Shape{G::Ports, Dot, T::Ink, T::None, {10.2F, 7, 0.85F}},
    Shape{G::Ports, Dot, T::Ink, T::None, {12.4F, 7, 0.85F}},
    Shape{G::Ports, Dot, T::Blue, T::None, {4.7F, 10, 0.85F}},
    Shape{G::Ports, Dot, T::Blue, T::None, {6.9F, 10, 0.85F}},
    Shape{G::Ports, Dot, T::Blue, T::None, {9.1F, 10, 0.85F}},
    Shape{G::Ports, Dot, T::Blue, T::None, {11.3F, 10, 0.85F}},

    Shape{G::Printer, Box, T::White, T::Ink, {3.5F, 1.5F, 9, 5, 0}},
    Shape{G::Printer, Box, T::Shade, T::Ink, {0.5F, 5.5F, 15, 6, 1}},
    Shape{G::Printer, Dot, T::Green, T::None, {13, 7.5F, 0.9F}},
    Shape{G::Printer, Box, T::White, T::Ink, {3.5F, 9.5F, 9, 5, 0}},
    Shape{G::Printer, Line, T::None, T::Blue, {5.5F, 11.5F, 10.5F, 11.5F}},

    Shape{G::Camera, Box, T::Dark, T::Ink, {4.5F, 2.5F, 7, 4, 1}},
    Shape{G::Camera, Box, T::Dark, T::Ink, {0.5F, 4.5F, 15, 9, 1.5F}},
    Shape{G::Camera, Dot, T::Body, T::None, {8, 9, 3.6F}},
    Shape{G::Camera, Dot, T::Blue, T::None, {8, 9, 2.4F}},
    Shape{G::Camera, Dot, T::Amber, T::None, {13, 6.8F, 0.9F}},

    Shape{G::Imaging, Poly, T::Shade, T::Ink, {4, 1.5F, 8.5F, 13.5F, 2.5F, 14.5F, 4, 4, 9.5F}},
    Shape{G::Imaging, Box, T::Body, T::Ink, {0.5F, 9.5F, 15, 4, 1}},
    Shape{G::Imaging, Line, T::None, T::Sky, {2.5F, 11.5F, 10.5F, 11.5F}},
    Shape{G::Imaging, Dot, T::Green, T::None, {13, 11.5F, 0.9F}},

    Shape{G::Battery, Box, T::Shade, T::Ink, {13.5F, 6.5F, 2, 3, 0.5F}},
    Shape{G::Battery, Box, T::Body, T::Ink, {0.5F, 4.5F, 13, 7, 1}},
    Shape{G::Battery, Box, T::Green, T::None, {2, 6, 7, 4, 0}},

    Shape{G::Security, Arc, T::None, T::Dark, {8, 6, 3.2F, 0, 180}},
    Shape{G::Security, Line, T::None, T::Dark, {4.8F, 6, 4.8F, 8}},
    Shape{G::Security, Line, T::None, T::Dark, {11.2F, 6, 11.2F, 8}},
    Shape{G::Security, Box, T::Amber, T::Ink, {2.5F, 7.5F, 11, 7, 1}},
    Shape{G::Security, Dot, T::Ink, T::None, {8, 10.3F, 1.2F}},
    Shape{G::Security, Line, T::None, T::Ink, {8, 10.5F, 8, 12.5F}},

    Shape{G::SmartCard, Box, T::Body, T::Ink, {0.5F, 2.5F, 15, 11, 1.5F}},
    Shape{G::SmartCard, Box, T::Amber, T::Ink, {2.5F, 5.5F, 4, 3.5F, 0.5F}},
    Shape{G::SmartCard, Line, T::None, T::Blue, {2.5F, 11.5F, 9, 11.5F}},
    Shape{G::SmartCard, Line, T::None, T::Shade, {9, 6, 13.5F, 6}},

    Shape{G::Sensor, Dot, T::Green, T::None, {8, 8, 7.5F}},
    Shape{G::Sensor, Dot, T::White, T::None, {8, 8, 1.6F}},
    Shape{G::Sensor, Arc, T::None, T::White, {8, 8, 4.6F, -50, 100}},
    Shape{G::Sensor, Arc, T::None, T::White, {8, 8, 4.6F, 130, 100}},

    Shape{G::Biometric, Arc, T::None, T::Blue, {8, 8, 6.5F, -20, 220}},
    Shape{G::Biometric, Arc, T::None, T::Blue, {8, 8, 4, -30, 240}},
    Shape{G::Biometric, Arc, T::None, T::Blue, {8, 8.5F, 1.6F, -40, 260}},
    Shape{G::Biometric, Line, T::None, T::Blue, {8, 8.5F, 8, 14.5F}},
    Shape{G::Biometric, Line, T::None, T::Blue, {4.6F, 10.5F, 5.4F, 14}},
    Shape{G::Biometric, Line, T::None, T::Blue, {11.4F, 10.5F, 10.6F, 14}},

    Shape{G::Portable, Box, T::Dark, T::Ink, {3.5F, 0.5F, 9, 15, 1.5F}},
    Shape{G::Portable, Box, T::Sky, T::None, {5, 2.5F, 6, 9, 0}},
    Shape{G::Portable, Dot, T::White, T::None, {8, 13.5F, 0.9F}},

    Shape{G::Tape, Box, T::Dark, T::Ink, {0.5F, 3.5F, 15, 9.5F, 1}},
    Shape{G::Tape, Box, T::Body, T::None, {2, 5, 12, 5, 0}},
    Shape{G::Tape, Dot, T::White, T::Ink, {5, 7.5F, 1.5F}},
    Shape{G::Tape, Dot, T::White, T::Ink, {11, 7.5F, 1.5F}},

    Shape{G::FireWire, Line, T::None, T::Amber, {8, 8.5F, 8, 2.5F}},
    Shape{G::FireWire, Line, T::None, T::Amber, {8, 8.5F, 3, 12.5F}},
    Shape{G::FireWire, Line, T::None, T::Amber, {8, 8.5F, 13, 12.5F}},
    Shape{G::FireWire, Dot, T::Amber, T::Ink, {8, 8.5F, 2}},
    Shape{G::FireWire, Dot, T::Amber, T::Ink, {8, 2.5F, 1.6F}},
    Shape{G::FireWire, Box, T::Amber, T::Ink, {1.5F, 11, 3, 3, 0}},
    Shape{G::FireWire, Poly, T::Amber, T::Ink, {3, 13, 10.5F, 15, 14, 11, 14}},

    Shape{G::MemoryCard, Poly, T::Blue, T::Ink, {5, 2.5F, 1.5F, 10, 1.5F, 13.5F, 5, 13.5F, 14.5F, 2.5F, 14.5F}},
    Shape{G::MemoryCard, Box, T::Amber, T::None, {4, 3, 1.4F, 3, 0}},
    Shape{G::MemoryCard, Box, T::Amber, T::None, {6.3F, 3, 1.4F, 3, 0}},
    Shape{G::MemoryCard, Box, T::Amber, T::None, {8.6F, 3, 1.4F, 3, 0}},
    Shape{G::MemoryCard, Box, T::White, T::None, {4, 8.5F, 8, 4.5F, 0}},

    Shape{G::Firmware, Line, T::None, T::Shade, {1, 4.5F, 15, 4.5F}},
    Shape{G::Firmware, Line, T::None, T::Shade, {1, 8, 15, 8}},
    Shape{G::Firmware, Line, T::None, T::Shade, {1, 11.5F, 15, 11.5F}},
    Shape{G::Firmware, Box, T::Dark, T::Ink, {3.5F, 1.5F, 9, 13, 1}},
    Shape{
        G::Firmware, Poly, T::Amber, T::None, {6, 9, 3.5F, 5.5F, 8.6F, 7.6F, 8.6F, 7, 12.5F, 10.5F, 7.2F, 8.4F, 7.2F}},

    Shape{G::Software, Box, T::White, T::Ink, {0.5F, 2.5F, 15, 11, 1}},
    Shape{G::Software, Box, T::Blue, T::None, {1, 3, 14, 2.5F, 0}},
    Shape{G::Software, Line, T::None, T::Shade, {3, 7.5F, 10, 7.5F}},
    Shape{G::Software, Line, T::None, T::Shade, {3, 9.5F, 13, 9.5F}},
    Shape{G::Software, Line, T::None, T::Shade, {3, 11.5F, 8, 11.5F}},
};

QColor ColourOf(Tone tone) {
    switch (tone) {
    case Tone::Ink:
        return QColor(0x2F, 0x3B, 0x45);
    case Tone::Body:
        return QColor(0xEE, 0xF2, 0xF5);
    case Tone::Shade:
        return QColor(0xA9, 0xB6, 0xC0);
    case Tone::White:
        return QColor(0xFF, 0xFF, 0xFF);
    case Tone::Blue:
        return QColor(0x15, 0x65, 0xC0);
    case Tone::Sky:
        return QColor(0x64, 0xB5, 0xF6);
    case Tone::Green:
        return QColor(0x2E, 0x8B, 0x45);
    case Tone::Amber:
        return QColor(0xF9, 0xB2, 0x1B);
    case Tone::Dark:
        return QColor(0x54, 0x65, 0x72);
    case Tone::None:
        break;
    }
    return {};
}

void DrawPoly(QPainter& painter, const Shape& shape) {
    QPolygonF points;
    for (size_t i = 0; i < size_t(shape.n[0]); ++i)
        points << QPointF(double(shape.n[1 + 2 * i]), double(shape.n[2 + 2 * i]));
    painter.drawPolygon(points);
}

void DrawShape(QPainter& painter, const Shape& shape) {
    const auto n = [&shape](size_t i) { return double(shape.n[i]); };
    const double width = shape.kind == Kind::Line || shape.kind == Kind::Arc ? 1.3 : 1.0;
    painter.setPen(shape.line == Tone::None
                       ? QPen(Qt::NoPen)
                       : QPen(ColourOf(shape.line), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(shape.fill == Tone::None ? QBrush(Qt::NoBrush) : QBrush(ColourOf(shape.fill)));
    switch (shape.kind) {
    case Kind::Box:
        painter.drawRoundedRect(QRectF(n(0), n(1), n(2), n(3)), n(4), n(4));
        break;
    case Kind::Dot:
        painter.drawEllipse(QPointF(n(0), n(1)), n(2), n(2));
        break;
    case Kind::Line:
        painter.drawLine(QPointF(n(0), n(1)), QPointF(n(2), n(3)));
        break;
    case Kind::Arc:
        painter.drawArc(QRectF(n(0) - n(2), n(1) - n(2), 2 * n(2), 2 * n(2)), int(n(3) * 16), int(n(4) * 16));
        break;
    case Kind::Poly:
        DrawPoly(painter, shape);
        break;
    }
}

} // namespace

QPixmap GlyphPixmap(Glyph glyph, int pixels) {
    if (glyph == Glyph::None || pixels < 1)
        return {};
    const QString key = QStringLiteral("suite-glyph-%1-%2").arg(int(glyph)).arg(pixels);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / field, pixels / field);
    for (const Shape& shape : shapes) {
        if (shape.glyph == glyph)
            DrawShape(painter, shape);
    }
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace suite
