// The pictures of the button and their sizes.
#include "controls/dc_button.h"

#include "base/numbers.h"

#include <array>

namespace controls {

namespace {

constexpr int customSize = 5;
constexpr std::array pictureSides = {0, 16, 24, 32, 48}; // by PictureSize, pixels

} // namespace

void dcButton::SetPictureNormal(const draw::Picture& picture) {
    pictureNormal_ = picture;
    if (picture.IsEmpty()) {
        pictureDown_ = draw::Picture();
        pictureHot_ = draw::Picture();
        pictureOpacity_ = 0;
    } else if (!(pictureOpacity_ > 0)) {
        pictureOpacity_ = 1;
    }
    ApplyPictureSize();
    LayoutChanged();
    Changed("PictureNormal");
}

bool dcButton::StoreStatePicture(draw::Picture& slot, const draw::Picture& picture) {
    if (!picture.IsEmpty() && pictureNormal_.IsEmpty()) {
        SetPictureNormal(picture);
        return false;
    }
    const bool sameSize = picture.Image().size() == pictureNormal_.Image().size();
    if (!picture.IsEmpty() && pictureSize_ == 0 && !sameSize)
        pictureSize_ = customSize;
    slot = picture;
    return true;
}

void dcButton::SetPictureHot(const draw::Picture& picture) {
    if (!StoreStatePicture(pictureHot_, picture))
        return;
    if (mouseOver_)
        Repaint(-1, true);
    Changed("PictureHot");
}

void dcButton::SetPictureDown(const draw::Picture& picture) {
    if (!StoreStatePicture(pictureDown_, picture))
        return;
    if (pressed_)
        Repaint(-1, true);
    Changed("PictureDown");
}

int dcButton::PictureOpacity() const { return base::RoundToInt(double(pictureOpacity_) * 100); }

void dcButton::SetPictureOpacity(int percent) {
    pictureOpacity_ = float(qBound(0, percent, 100)) / 100;
    Repaint(-1, true);
    Changed("PictureOpacity");
}

void dcButton::SetPictureSize(int size) {
    pictureSize_ = size;
    ApplyPictureSize();
    LayoutChanged();
    Changed("PictureSize");
}

void dcButton::ApplyPictureSize() {
    if (pictureNormal_.IsEmpty()) {
        pictureSize_ = 0;
        pictureSizeW_ = 0;
        pictureSizeH_ = 0;
    } else if (pictureSize_ == 0) {
        pictureSizeW_ = pictureNormal_.Width();
        pictureSizeH_ = pictureNormal_.Height();
    } else if (pictureSize_ > 0 && pictureSize_ < int(pictureSides.size())) {
        pictureSizeW_ = pictureSides.at(size_t(pictureSize_));
        pictureSizeH_ = pictureSizeW_;
    }
}

void dcButton::SetPictureSizeH(int pixels) {
    pictureSizeH_ = pixels;
    const QPointer<dcButton> alive(this);
    SetPictureSize(customSize);
    if (alive)
        Changed("PictureSizeH");
}

void dcButton::SetPictureSizeW(int pixels) {
    pictureSizeW_ = pixels;
    const QPointer<dcButton> alive(this);
    SetPictureSize(customSize);
    if (alive)
        Changed("PictureSizeW");
}

void dcButton::SetPictureAlignment(int alignment) {
    pictureAlignment_ = alignment;
    LayoutChanged();
    Changed("PictureAlignment");
}

} // namespace controls
