// Icons among the program's resources: a group of images of several sizes and depths under one name ("AAA" is the
// program's), and the choice of the one that fits.
#pragma once

#include "draw/picture.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace window {

// One entry of a group: size in pixels, bits a pixel, and the image's place in the resource.
struct IconEntry {
    int Width = 0;
    int Height = 0;
    int BitCount = 0;
    int Image = 0;
};

// The entries of a group resource (icon file form, type 1); empty for anything else. Format: the public description of
// icon files: a header of 6 bytes, then 16 bytes an image, a size of 256 written as 0.
QVector<IconEntry> ReadIconGroup(const QByteArray& resource);

// LookupIconIdFromDirectoryEx: the entry whose size comes nearest, larger ones before smaller, deeper before flatter;
// -1 for an empty group.
int BestIconEntry(const QVector<IconEntry>& group, int width, int height);

// A picture made of the best-fitting image, at the wanted size in pixels. A width or height of 0 takes the system's big
// icon size; with `smallSize` any other than the big size takes the small one. A `colourDepth` of 1 or more prefers an
// image of that depth. None if there is no such resource.
draw::Picture LoadIconFromRes(const QString& name, int width, int height, int colourDepth, bool smallSize);

} // namespace window
