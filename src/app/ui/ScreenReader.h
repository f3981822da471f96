#pragma once

#include <QAccessible>

#include <functional>

/// The way to a screen reader, or to any other program that asks for a window's content. While there is none,
/// nothing is worked out for one.

[[nodiscard]] bool isReaderThere();

/// Tells what has happened; nobody hears it without a reader.
void tellReader(QAccessibleEvent& event);
void tellReader(QObject& object, QAccessible::Event event);

/// What hears in place of the desktop's reader, for tests: a platform without a desktop has none. Nothing
/// gives the desktop's reader its place back.
void setReaderStandIn(std::function<void(QAccessibleEvent&)> standIn);
