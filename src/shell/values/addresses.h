// Where the program's servers and pages are. Defaults are fixed when the build is configured; tests put loopback here.
#pragma once

#include <QString>

namespace values {

struct Addresses {
    QString WebSite;    // home page, without a trailing slash; the forums are below it at /forums/
    QString UpdateHost; // scheme and host (and port) of the version files and the database archive
    QString UploadHost; // scheme and host (and port) of the upload script
    QString SearchSite; // answers /?q= with results
    QString SocialPage1;
    QString SocialPage2;
    QString Mail;       // the maintainers' e-mail address
    QString UpdateKeys; // base64 of the public keys that sign databases, between blanks; empty: none need be signed
};

Addresses& ServerAddresses();

// A line that says which databases this build takes.
QString UpdateKeysText();

} // namespace values
