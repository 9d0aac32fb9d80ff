// Tells screen readers what the plain controls of a form are: labels, the grip of a window's corner, pictures. The
// factory is installed once for the process; the toolkit owns the interfaces that it makes.
#pragma once

namespace forms {

// Cheap to call again.
void InstallAccessibility();

} // namespace forms
