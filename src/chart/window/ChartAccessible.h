#pragma once

#include "app/ui/LiveAccessible.h"

class ChartReader;
class ChartWidget;

/// A chart as a screen reader meets it: its name is symbol and timeframe, its description what is to be read
/// on it, its children are the widgets on it and then its marks.
class ChartAccessible final : public LiveAccessible {
public:
    explicit ChartAccessible(ChartWidget& chart);

    /// Makes Qt give every chart this interface.
    static void install();

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;

protected:
    [[nodiscard]] QString reading() const override;

private:
    [[nodiscard]] ChartReader& reader() const;
};
