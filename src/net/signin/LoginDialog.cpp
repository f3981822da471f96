#include "net/signin/LoginDialog.h"

#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "app/ui/Banner.h"
#include "app/ui/ErrorLabel.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/HeldEnter.h"
#include "app/ui/Theme.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Unless large letters need more.
constexpr int dialogWidth = 400;
constexpr int bannerHeight = 96;
/// Beside the text of a field.
constexpr int fieldMargins = 24;
constexpr QMargins outerMargins(0, 0, 0, 16);
constexpr QMargins rowMargins(24, 4, 24, 0);

} // namespace

LoginDialog::LoginDialog(TerminalSettings& settings, QWidget* parent)
    : QDialog(parent)
    , m_settings(settings)
    , m_email(new QLineEdit(this))
    , m_password(new QLineEdit(this))
    , m_remember(new QCheckBox(tr("Keep me signed in"), this))
    //: the button that signs in
    , m_loginButton(new QPushButton(tr("Login"), this))
    , m_errorLabel(new ErrorLabel(this))
{
    m_email->setObjectName("email"_L1);
    m_password->setObjectName("password"_L1);
    m_remember->setObjectName("remember"_L1);
    m_loginButton->setObjectName("loginButton"_L1);
    m_errorLabel->setObjectName("errorLabel"_L1);

    setWindowTitle(tr("Tavoran Terminal"));
    setWindowIcon(appIcon());
    setModal(true);

    auto* const banner = new QLabel(this);
    banner->setObjectName("banner"_L1);
    banner->setAccessibleName(tr("Tavoran"));

    m_errorLabel->setStyleSheet(u"color:#ff6b6b; padding:0 24px;"_s);

    auto* const outer = new QVBoxLayout(this);
    outer->setContentsMargins(outerMargins);
    outer->addWidget(banner);
    QLayout* const form = buildForm();
    outer->addLayout(form);
    outer->addWidget(m_errorLabel);
    outer->addLayout(buildButtons());
    const int width = std::max(dialogWidth, form->minimumSize().width());
    setFixedWidth(width);
    banner->setPixmap(renderBanner(width, bannerHeight));
    banner->setFixedSize(width, bannerHeight);
    refuseHeldEnter(*this);

    (m_email->text().isEmpty() ? m_email : m_password)->setFocus();

    connect(m_loginButton, &QPushButton::clicked, this, &LoginDialog::attemptLogin);
    // An answer that is already on its way must neither sign in nor store a token any more.
    connect(this, &QDialog::rejected, this, &LoginDialog::renewClient);
    renewClient();
}

void LoginDialog::renewClient()
{
    m_api.emplace(m_settings);
    connect(&*m_api, &ApiClient::loginSucceeded, this, &LoginDialog::onLoginSucceeded);
    connect(&*m_api, &ApiClient::loginFailed, this, &LoginDialog::onLoginFailed);
    setBusy(false);
}

QLayout* LoginDialog::buildForm()
{
    m_email->setText(m_settings.email());
    m_email->setPlaceholderText(u"trader@example.com"_s);
    m_email->ensurePolished();
    m_email->setMinimumWidth(
        m_email->fontMetrics().horizontalAdvance(m_email->placeholderText()) + fieldMargins);
    m_password->setEchoMode(QLineEdit::Password);
    m_remember->setChecked(m_settings.remember());

    auto* const form = new QFormLayout;
    form->setContentsMargins(rowMargins);
    //: the e-mail address that signs in
    form->addRow(tr("Login:"), m_email);
    form->addRow(tr("Password:"), m_password);
    form->addRow(QString(), m_remember);
    return form;
}

QLayout* LoginDialog::buildButtons()
{
    auto* const cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName("cancelButton"_L1);
    cancel->setAutoDefault(false);
    setFocusOrder({m_email, m_password, m_remember, cancel, m_loginButton});
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    m_loginButton->setDefault(true);

    auto* const row = new QHBoxLayout;
    row->setContentsMargins(rowMargins);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(m_loginButton);
    return row;
}

void LoginDialog::attemptLogin()
{
    const QString email = m_email->text().trimmed();
    const QString password = m_password->text();
    if (email.isEmpty() || password.isEmpty()) {
        setBusy(false);
        showError(tr("Please enter your login and password."));
        askForPassword();
        return;
    }
    // The sign-in answer decides by this choice whether the token outlives the session.
    m_settings.setRemember(m_remember->isChecked());
    m_errorLabel->hide();
    fitHeight();
    setBusy(true);
    m_api->login(email, password);
}

void LoginDialog::onLoginSucceeded(const QJsonObject& user)
{
    m_user = user;
    accept();
}

void LoginDialog::onLoginFailed(const QString& message)
{
    setBusy(false);
    showError(message);
    askForPassword();
}

void LoginDialog::setBusy(bool on)
{
    for (QWidget* const widget : {static_cast<QWidget*>(m_email), static_cast<QWidget*>(m_password),
             static_cast<QWidget*>(m_remember), static_cast<QWidget*>(m_loginButton)})
        widget->setEnabled(!on);
    m_loginButton->setText(on ? tr("Connecting...") : tr("Login"));
}

void LoginDialog::showError(const QString& text)
{
    logReport(tr("Auth"), text);
    m_errorLabel->showError(text);
    fitHeight();
}

void LoginDialog::fitHeight()
{
    // A wrapped label does not by itself make its window taller when it appears, nor lower when it goes.
    layout()->activate();
    resize(width(), layout()->totalHeightForWidth(width()));
}

void LoginDialog::askForPassword()
{
    m_password->setFocus();
    m_password->selectAll();
}
