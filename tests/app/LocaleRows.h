#pragma once

#include <QLocale>
#include <QtTest>

namespace fixtures {

/// The column "locale": the plain one, and such that write numbers with commas or with other digits.
inline void addLocaleRows()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("en_US") << QLocale(QLocale::English, QLocale::UnitedStates);
    QTest::newRow("de_DE") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("fr_FR") << QLocale(QLocale::French, QLocale::France);
    QTest::newRow("ar_EG") << QLocale(QLocale::Arabic, QLocale::Egypt);
}

} // namespace fixtures
