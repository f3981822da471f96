#pragma once

#include <QStyledItemDelegate>

/// Paints cells whose end matters as much as their beginning: letters are set narrower, down to two thirds,
/// before any are left out. For short columns of a given width, whatever fonts the desktop has.
class FittingDelegate final : public QStyledItemDelegate {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FittingDelegate)

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    ~FittingDelegate() override = default;

    /// `font`, narrowed as far as needed for `text` to be at most `width` pixels wide.
    [[nodiscard]] static QFont fitted(const QFont& font, const QString& text, int width);

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
