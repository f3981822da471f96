#include "chart/window/ChartPropertiesDialog.h"

#include "app/base/ServerText.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/WheelFocus.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/window/CompactButton.h"

#include <QColorDialog>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize swatchSize(60, 20);

QString labelOf(const ChartColorRole& role)
{
    return QCoreApplication::translate("ChartColorRoles", role.label);
}

} // namespace

ChartPropertiesDialog::ChartPropertiesDialog(
    const QString& symbol, const ChartColors& colors, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Chart Properties — %1").arg(shownName(symbol)));
    auto* form = new QFormLayout;
    std::size_t index = 0;
    for (const ChartColorRole& role : chartColorRoles()) {
        auto* swatch = new CompactButton(swatchSize, this);
        swatch->setObjectName("swatch-"_L1 + role.key);
        swatch->setAccessibleName(labelOf(role));
        swatch->setAutoDefault(false);
        connect(swatch, &QPushButton::clicked, this, [this, &role] { chooseColor(role); });
        form->addRow(labelOf(role), swatch);
        m_swatches.at(index++) = swatch;
    }

    auto* presets = new QHBoxLayout;
    auto* greenBlack = new QPushButton(tr("Qlon Green/Black"), this);
    auto* blackWhite = new QPushButton(tr("Black/White"), this);
    greenBlack->setAutoDefault(false);
    blackWhite->setAutoDefault(false);
    connect(greenBlack, &QPushButton::clicked, this, [this] { useColors(greenOnBlackColors()); });
    connect(blackWhite, &QPushButton::clicked, this, [this] { useColors(blackOnWhiteColors()); });
    presets->addWidget(greenBlack);
    presets->addWidget(blackWhite);
    form->addRow(tr("Presets:"), presets);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setFocusOrder(QList<QWidget*>(m_swatches.cbegin(), m_swatches.cend())
        + QList<QWidget*>{greenBlack, blackWhite, buttons->button(QDialogButtonBox::Ok),
            buttons->button(QDialogButtonBox::Cancel)});
    m_swatches.front()->setFocus();
    useColors(colors);
}

ChartPropertiesDialog::~ChartPropertiesDialog() = default;

void ChartPropertiesDialog::chooseColor(const ChartColorRole& role)
{
    auto* chooser = new QColorDialog(m_colors.*role.member, this);
    chooser->setAttribute(Qt::WA_DeleteOnClose);
    chooser->setOption(QColorDialog::DontUseNativeDialog);
    chooser->setWindowTitle(labelOf(role));
    for (QSpinBox* number : chooser->findChildren<QSpinBox*>())
        takeWheelOnlyFocused(*number);
    connect(chooser, &QColorDialog::colorSelected, this, [this, &role](const QColor& color) {
        ChartColors colors = m_colors;
        colors.*role.member = color;
        useColors(colors);
    });
    chooser->open();
}

void ChartPropertiesDialog::useColors(const ChartColors& colors)
{
    m_colors = colors;
    std::size_t index = 0;
    for (const ChartColorRole& role : chartColorRoles()) {
        QPushButton* swatch = m_swatches.at(index++);
        const QString name = (m_colors.*role.member).name();
        swatch->setStyleSheet(u"background:%1;border:1px solid #888;"_s.arg(name));
        swatch->setAccessibleDescription(name);
    }
}
