#pragma once

#include "net/ApiClient.h"

#include <QDialog>
#include <QJsonObject>
#include <optional>

class ErrorLabel;
class QCheckBox;
class QLayout;
class QLineEdit;
class QPushButton;
class TerminalSettings;

/// The modal sign-in window that runs before the main window exists. Ends accepted after a
/// successful sign-in, rejected when the user leaves it, a request in flight or not.
class LoginDialog final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LoginDialog)

public:
    /// The settings must outlive the dialog.
    explicit LoginDialog(TerminalSettings& settings, QWidget* parent = nullptr);

    /// The server's sign-in answer; empty until accepted.
    [[nodiscard]] QJsonObject user() const { return m_user; }

private Q_SLOTS:
    void attemptLogin();
    void onLoginSucceeded(const QJsonObject& user);
    void onLoginFailed(const QString& message);

private:
    [[nodiscard]] QLayout* buildForm();
    [[nodiscard]] QLayout* buildButtons();
    void renewClient();
    void setBusy(bool on);
    void showError(const QString& text);
    void fitHeight();
    void askForPassword();

    TerminalSettings& m_settings;
    std::optional<ApiClient> m_api;
    QLineEdit* m_email;
    QLineEdit* m_password;
    QCheckBox* m_remember;
    QPushButton* m_loginButton;
    ErrorLabel* m_errorLabel;
    QJsonObject m_user;
};
