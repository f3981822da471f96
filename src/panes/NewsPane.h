#pragma once

#include "app/base/Balloon.h"
#include "net/ReadCoalescer.h"

#include <QSet>
#include <QWidget>

class QTreeWidget;
struct NewsReply;

/// The economic calendar: upcoming events, read again every two minutes, and a balloon shortly before each
/// one of high impact. A failed read leaves the list as it was and is not reported.
class NewsPane final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(NewsPane)

public:
    /// The client must outlive the pane. Nothing is read before refresh() or the first turn of the timer.
    explicit NewsPane(ApiClient& api, QWidget* parent = nullptr);
    ~NewsPane() override = default;

public Q_SLOTS:
    void refresh();

Q_SIGNALS:
    /// At most once for each event in a run, even where there is no tray to show it.
    void balloonWanted(const Balloon& balloon);

private:
    void onReply(const QJsonDocument& document);
    void fill(const NewsReply& news);
    void announce(const NewsReply& news);

    ReadCoalescer m_reads;
    QTreeWidget* m_list;
    QSet<QString> m_notified; ///< ids of the events announced in this run
};
