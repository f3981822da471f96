#pragma once

#include <QAccessible>
#include <QHashFunctions>
#include <QPointer>

class ChartWidget;

/// What a screen reader finds on a chart as a thing of its own: a level, a drawing, the button that scrolls
/// to the newest bar. Known by what it stands for, not by its place in a list, so that it stays the same
/// thing while lists are read again.
struct ChartMarkKey {
    enum class Kind { Level, Drawing, EndButton };

    Kind kind = Kind::Level;
    QString id;     ///< of a level its trade and kind, of a drawing its server id, or its place without one
    int number = 0; ///< tells apart those that are otherwise the same

    bool operator==(const ChartMarkKey&) const = default;
};

[[nodiscard]] inline std::size_t qHash(const ChartMarkKey& key, std::size_t seed = 0)
{
    return qHashMulti(seed, static_cast<int>(key.kind), key.id, key.number);
}

/// The accessible side of such a mark. ChartReader makes it and takes it away with what it stands for.
class ChartMark final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ChartMark(ChartWidget& chart, ChartMarkKey key);

    [[nodiscard]] const ChartMarkKey& key() const { return m_key; }

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override;
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override { }
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;

    void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

protected:
    ~ChartMark() override = default; // QAccessible's

private:
    [[nodiscard]] bool isButton() const { return m_key.kind == ChartMarkKey::Kind::EndButton; }
    /// Where it lies on the chart; empty when it is out of view.
    [[nodiscard]] QRect area() const;

    QPointer<ChartWidget> m_chart;
    ChartMarkKey m_key;
};
