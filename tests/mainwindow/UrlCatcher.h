#pragma once

#include <QDesktopServices>
#include <QUrl>
#include <QtTest>

/// Takes the place of the desktop for file addresses while it lives.
class UrlCatcher final : public QObject {
    Q_OBJECT

public:
    UrlCatcher() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl& url) { urls.append(url); }
};
