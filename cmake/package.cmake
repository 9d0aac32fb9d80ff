# The Debian package. packaging/build-package sets the flags and the time that make it the same wherever it is built.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorvane)
set(CPACK_PACKAGE_VENDOR "The Quorvane developers")
set(CPACK_PACKAGE_CONTACT "The Quorvane developers <${QUORVANE_MAIL}>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "devices of a PC and where their drivers come from")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Folders and files do not depend on the mask of whoever builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${QUORVANE_WEB_SITE})
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Libraries are found by what the programs link. What they start or read comes by hand: the archive engine, the names of
# vendors and devices, and the browser's starter.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "p7zip-full | 7zip, hwdata, fonts-dejavu-core | fonts-freefont-ttf | fonts-liberation")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "mdbtools, bash-completion")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Quorvane lists every device of the machine with its manufacturer, problem
code, class, driver version and hardware IDs, in the vocabulary of Plug and
Play: all hardware, devices without drivers, devices with problems, and
everything but standard system devices. It looks the IDs up in a local
database and opens a web search for the driver.
.
Devices that the database lacks can be contributed, and a newer database can
be fetched. The package comes with a database made from hwdata's ID files.
.
The lists are there without a display too, as text for scripts
(quorvane-list); a third program builds, checks and merges databases
(quorvane-db).")
include(CPack)
