// What the drawn controls tell screen readers: role, name, states and actions. The factory is installed once by the
// first control that asks; the toolkit owns the interfaces it makes.
#pragma once

#include <QString>

class QWidget;

namespace controls {

// Makes the drawn controls known to the toolkit's accessibility. Cheap to call again.
void InstallAccessibility();

void AccessibleNameChanged(QWidget* control);
// A progress bar moved.
void AccessibleValueChanged(QWidget* control, int value);
// A bar that shows work started or stopped.
void AccessibleBusyChanged(QWidget* control);
// A panel collapsed to its title or came back.
void AccessibleExpandChanged(QWidget* control);
// A check button was checked or unchecked.
void AccessibleCheckChanged(QWidget* control);

} // namespace controls
