#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

class QAbstractItemView;

/// The current row and the selected ones of a list, to be found again once it has been filled anew. Where the
/// current row is gone, the keys go on with its heir.
class KeptRows final {
public:
    /// What a row is known by; rows without a key are not kept. Of rows with the same key the last one
    /// becomes current again.
    using Key = std::function<QString(int row)>;

    [[nodiscard]] static KeptRows of(const QAbstractItemView& list, const Key& key);
    /// To be called while the list has neither. The list stays scrolled where it is, also when it is shown
    /// later.
    void restore(QAbstractItemView& list, const Key& key) const;

private:
    QString m_current;
    QStringList m_heirs; ///< of the current row, as heirsOf() has them
    QSet<QString> m_selected;
};

/// What takes the place of one of these keys once it is gone: the first that is left of those after it, then
/// of those before it, the nearest first.
[[nodiscard]] QStringList heirsOf(const QStringList& keys, qsizetype place);
