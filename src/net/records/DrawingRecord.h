#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// What can be read of a drawing that the server keeps, and the bodies that create and change one.
namespace drawing {

[[nodiscard]] QString id(const QJsonObject& record);
/// Which tool drew it, as the server words it.
[[nodiscard]] QString tool(const QJsonObject& record);
/// The text of its colour; undefined where there is none.
[[nodiscard]] QJsonValue color(const QJsonObject& record);
[[nodiscard]] QJsonArray points(const QJsonObject& record);

/// Of one point: ms since the epoch, 0 for what is no time that 64 bits hold.
[[nodiscard]] qint64 time(const QJsonObject& point);
[[nodiscard]] double price(const QJsonObject& point);
[[nodiscard]] QJsonObject point(qint64 time, double price);

/// The body that changes a drawing: its points, and its colour as "#rrggbb".
[[nodiscard]] QJsonObject updateBody(const QJsonArray& points, const QString& color);
/// Makes an updateBody() the body that creates a drawing on a symbol, for one account ("" for none).
void addOrigin(QJsonObject& body, const QString& tool, const QString& symbol, const QString& accountId);

} // namespace drawing
