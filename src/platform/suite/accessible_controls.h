// Tells screen readers what those controls are that no widget of the toolkit stands behind: group boxes, pictures,
// pages.
#pragma once

namespace suite {

// Makes the roles known to the toolkit, once for the process; further calls do nothing.
void InstallAccessibleControls();

} // namespace suite
