#include "panes/PaneIcons.h"
#include "support/IconSheet.h"
#include "support/PictureCheck.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class tst_PaneIcons final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void icons_look_as_stored_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<qreal>("ratio");
        QTest::newRow("ordinary screen") << u"pane-icons"_s << 1.0;
        QTest::newRow("dense screen") << u"pane-icons@2x"_s << 2.0;
    }
    void icons_look_as_stored()
    {
        QFETCH(const QString, name);
        QFETCH(const qreal, ratio);
        const QColor up(0x0a, 0x63, 0xc2);
        const QColor down(0xc0, 0x39, 0x2b);
        const QColor stroke(0x44, 0x44, 0x44);
        const QImage sheet
            = pictures::iconSheet({upArrowIcon(up), downArrowIcon(down), folderIcon(stroke),
                                      accountIcon(stroke), indicatorIcon(stroke), expertIcon(stroke)},
                ratio);
        const pictures::PictureFolder folder(
            QStringLiteral(PICTURE_FOLDER), QStringLiteral(FAILED_PICTURE_FOLDER));
        const QString wrong = folder.check(name, sheet);
        QVERIFY2(wrong.isEmpty(), qUtf8Printable(wrong));
    }
};

TAVORAN_TEST(tst_PaneIcons)
#include "tst_PaneIcons.moc"
