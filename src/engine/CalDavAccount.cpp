#include "engine/CalDavAccount.h"

#include "shared/OwnerId.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"

#include <QHostAddress>

namespace {

QString setting(const cSHAREDSettings& settings, const char* key) {
    return settings.sGet(QString::fromLatin1(key), QString()).toText().trimmed();
}

} // namespace

bool CalDavAccount::CalDavMode(const cSHAREDSettings& settings) {
    return DataFiles::CalDavMode(settings);
}

CalDavAccount CalDavAccount::FromSettings(const cSHAREDSettings& settings) {
    CalDavAccount account;
    QString url = setting(settings, kUrlKey);
    if (!url.isEmpty() && !url.endsWith(QLatin1Char('/'))) {
        url += QLatin1Char('/');
    }
    account.server = QUrl(url);
    account.user = setting(settings, kUserKey);
    for (const QString& part : setting(settings, kUsersKey).split(QLatin1Char(','))) {
        const QString name = part.trimmed();
        if (name.isEmpty() || OwnerId::Same(name, account.user)) {
            continue;
        }
        bool known = false;
        for (const QString& listed : account.users) {
            known = known || OwnerId::Same(listed, name);
        }
        if (!known) {
            account.users.append(name);
        }
    }
    return account;
}

QUrl CalDavAccount::CollectionUrl(const QString& name) const {
    return server.resolved(QUrl(QString::fromLatin1(QUrl::toPercentEncoding(name)) +
                                QStringLiteral("/tarvo/")));
}

QString CalDavAccount::Problem() const {
    if (server.isEmpty()) {
        return QStringLiteral("No CalDAV server address is set.");
    }
    if (user.isEmpty()) {
        return QStringLiteral("No CalDAV user name is set.");
    }
    return UrlProblem(server.toString());
}

QString CalDavAccount::UrlProblem(const QString& url) {
    const QUrl parsed(url.trimmed(), QUrl::StrictMode);
    if (url.trimmed().isEmpty() || !parsed.isValid() || parsed.host().isEmpty()) {
        return QStringLiteral("The CalDAV server address is not a web address: ") + url.trimmed();
    }
    const QString scheme = parsed.scheme().toLower();
    if (scheme == QLatin1String("https")) {
        return {};
    }
    if (scheme != QLatin1String("http")) {
        return QStringLiteral("The CalDAV server address must start with https://");
    }
    const QString host = parsed.host();
    const QHostAddress address(host);
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
        (!address.isNull() && address.isLoopback())) {
        return {};
    }
    return QStringLiteral("Plain http:// would send the password readable over the network; "
                          "use https:// for ") +
           host;
}
