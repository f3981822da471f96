#pragma once

#include <QSet>
#include <QString>

#include <functional>

class QAbstractItemView;

/// The current row and the selected ones of a list, to be found again once it has been filled anew.
class KeptRows final {
public:
    /// What a row is known by; rows without a key are not kept. Of rows with the same key the last one
    /// becomes current again.
    using Key = std::function<QString(int row)>;

    [[nodiscard]] static KeptRows of(const QAbstractItemView& list, const Key& key);
    /// To be called while the list has neither.
    void restore(const QAbstractItemView& list, const Key& key) const;

private:
    QString m_current;
    QSet<QString> m_selected;
};
