#include "chart/AverageDialog.h"

AverageDialog::AverageDialog(QWidget* parent)
    : QInputDialog(parent)
{
    constexpr int shortest = 2;
    constexpr int longest = 400;
    constexpr int usual = 20;
    setWindowTitle(tr("Moving Average"));
    setLabelText(tr("Period:"));
    setInputMode(IntInput);
    setIntRange(shortest, longest);
    setIntStep(1);
    setIntValue(usual);
}

AverageDialog::~AverageDialog() = default;
