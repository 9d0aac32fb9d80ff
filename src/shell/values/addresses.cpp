#include "values/addresses.h"

namespace values {

Addresses& ServerAddresses() {
    static Addresses addresses{QStringLiteral(QUORVANE_WEB_SITE),      QStringLiteral(QUORVANE_UPDATE_HOST),
                               QStringLiteral(QUORVANE_UPLOAD_HOST),   QStringLiteral(QUORVANE_SEARCH_SITE),
                               QStringLiteral(QUORVANE_SOCIAL_PAGE_1), QStringLiteral(QUORVANE_SOCIAL_PAGE_2),
                               QStringLiteral(QUORVANE_MAIL),          QStringLiteral(QUORVANE_UPDATE_KEYS)};
    return addresses;
}

QString UpdateKeysText() {
    const QString& keys = ServerAddresses().UpdateKeys;
    return keys.isEmpty() ? QStringLiteral("databases are taken unsigned")
                          : QStringLiteral("databases are taken if signed by ") + keys;
}

} // namespace values
