#pragma once

#include <QNetworkRequest>

/// A request that tells the platform nothing it need not know and goes nowhere else: redirects are left
/// to the caller, cookies are neither sent nor kept, and HTTP/2 is not spoken.
[[nodiscard]] inline QNetworkRequest safeRequest(const QUrl& url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    return request;
}
