#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

/// Takes the place of the desktop for file addresses while it lives.
class UrlCatcher final : public QObject {
    Q_OBJECT

public:
    UrlCatcher();
    ~UrlCatcher() override;
    Q_DISABLE_COPY_MOVE(UrlCatcher)

    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl& url) { urls.append(url); }
};
