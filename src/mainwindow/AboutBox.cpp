#include "mainwindow/AboutBox.h"

#include "app/ui/Banner.h"
#include "app/ui/PlainText.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize bannerSize(400, 125);

} // namespace

AboutBox::AboutBox(QWidget* parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("About Tavoran Terminal"));

    auto* banner = new QLabel;
    banner->setPixmap(renderBanner(bannerSize.width(), bannerSize.height()));
    banner->setAccessibleName(tr("Tavoran"));
    auto* version = plainLabel(tr("Tavoran Terminal, version %1\nBuilt with Qt %2, running with Qt %3")
                                   .arg(QCoreApplication::applicationVersion(),
                                       QLatin1StringView(QT_VERSION_STR), QLatin1StringView(qVersion())));
    version->setObjectName(u"aboutVersion"_s);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* purpose = plainLabel(
        tr("Live prices, charts, orders, price alerts, an economic calendar and Expert Advisors, "
           "for the accounts of one trading platform."));
    purpose->setWordWrap(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(banner);
    layout->addWidget(version);
    layout->addWidget(purpose);
    layout->addWidget(buttons);
}
