// What every window of the program does with places: centring, the grip in its corner, the frame around it.
#pragma once

namespace controls {
class Anchor;
}

namespace forms {
class Control;
class Form;
class Label;
} // namespace forms

namespace window {

// In the middle of the monitor of the window that is in use, or of the primary one, and inside its work area.
void CentreOnScreen(forms::Form& form);

// The start of a sizable window's load: it takes its least size (twips), the middle of the screen, and its grip.
void OpenAtLeastSize(forms::Form& form, controls::Anchor& anchor, forms::Label& grip, double width, double height);

// `panel` in the middle of `list`, both in one container; yields after each coordinate.
void CentreOver(forms::Control& panel, const forms::Control& list);

// The lower right corner of the client area.
void PlaceGrip(forms::Form& form, forms::Label& grip);

// Lets the left button on the grip size the window by its lower right corner.
void ConnectGrip(forms::Form& form, forms::Label& grip);

// A frame of one pixel on the left, right and bottom edges: a rectangle whose top lies outside the window.
void DrawFrame(forms::Form& form);

} // namespace window
