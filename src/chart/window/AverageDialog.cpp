#include "chart/window/AverageDialog.h"

#include "app/ui/FocusOrder.h"
#include "app/ui/HeldEnter.h"
#include "app/ui/WheelFocus.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QSpinBox>

AverageDialog::AverageDialog(int usualPeriod, QWidget* parent)
    : QInputDialog(parent)
{
    constexpr int shortest = 2;
    constexpr int longest = 400;
    setWindowTitle(tr("Moving Average"));
    //: in bars
    setLabelText(tr("Period:"));
    setInputMode(IntInput);
    setIntRange(shortest, longest);
    setIntStep(1);
    setIntValue(usualPeriod);

    adjustSize(); // the dialog makes its widgets only when their size is asked for
    auto* period = findChild<QSpinBox*>();
    const auto* buttons = findChild<QDialogButtonBox*>();
    takeWheelOnlyFocused(*period);
    setFocusOrder({period, buttons->button(QDialogButtonBox::Ok), buttons->button(QDialogButtonBox::Cancel)});
    refuseHeldEnter(*this);
    period->setFocus();
    period->selectAll();
}

AverageDialog::~AverageDialog() = default;
