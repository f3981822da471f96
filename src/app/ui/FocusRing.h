#pragma once

#include <QColor>
#include <QFocusFrame>

/// A ring of dark and light lines that is drawn over its parent: on any colours, in either theme, at least
/// one of them stands out. It takes no mouse and no key, covers nothing but its lines, and is nothing to a
/// screen reader.
class FocusRing final : public QFocusFrame {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FocusRing)

public:
    /// Their contrast is more than 9 : 1, so every colour has one of at least 3 : 1 with one of them.
    static constexpr QColor dark{0x0b, 0x3d, 0x66};
    static constexpr QColor light{0xff, 0xff, 0xff};

    /// Thin: a dark line and within it a light one, for what lies on one ground. Thick: another dark one
    /// within, for what may be dark outside and light inside. In pixels: how wide all lines are together.
    enum Width { Thin = 2, Thick = 4 };

    struct Place {
        QRect edge; ///< the ring lies along its inside; in the parent's coordinates
        Width width = Thin;

        [[nodiscard]] bool operator==(const Place&) const = default;
    };

    explicit FocusRing(QWidget& parent);
    ~FocusRing() override = default;

    /// Shows the ring there, above everything else of the parent.
    void showAlong(const Place& place);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Width m_width = Thin;
};
