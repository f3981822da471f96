#pragma once

#include "app/ui/PoliteNews.h"

#include <QAccessible>
#include <QString>

class QWidget;

/// What a widget is besides, when it shows live numbers in one piece: a screen reader hears them as a
/// sentence, under the widget's accessible name.
class ReadAloud {
    Q_DISABLE_COPY_MOVE(ReadAloud)

public:
    [[nodiscard]] QAccessible::Role role() const { return m_role; }
    /// The numbers in words, as they are now.
    [[nodiscard]] virtual QString reading() const = 0;

protected:
    /// `self` is the widget that this is a part of.
    ReadAloud(QWidget& self, QAccessible::Role role);
    virtual ~ReadAloud();

    /// The reading may have changed; costs next to nothing without a reader.
    void noteReading() { m_news.note(); }

private:
    bool tellReading();

    QWidget& m_self;
    QAccessible::Role m_role;
    QString m_told;
    PoliteNews m_news;
};
