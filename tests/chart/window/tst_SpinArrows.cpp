#include "app/FileFixture.h"
#include "app/base/UtcTime.h"
#include "chart/ChartFixtures.h"
#include "chart/ChartWindowFixture.h"
#include "chart/window/OneClickPanel.h"
#include "chart/window/SpinArrows.h"
#include "support/TestMain.h"

#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

/// Tells whether the style sheet of the volume box was understood.
QColor upButtonColor(const OneClickPanel& panel)
{
    return panel.findChild<QDoubleSpinBox*>()->grab().toImage().pixelColor(63, 3);
}

} // namespace

class tst_SpinArrows final : public QObject {
    Q_OBJECT

    void useTemporaryFolder(const QString& path) { qputenv("TMPDIR", path.toLocal8Bit()); }

    QByteArray m_usual;
    std::unique_ptr<QTemporaryDir> m_folder;

private Q_SLOTS:
    void init()
    {
        m_usual = qgetenv("TMPDIR");
        m_folder = std::make_unique<QTemporaryDir>();
        useTemporaryFolder(m_folder->path());
    }

    void cleanup()
    {
        qputenv("TMPDIR", m_usual);
        m_folder.reset();
    }

    void areFilledTrianglesOnNothing()
    {
        const QImage up = spinArrowImage(SpinArrow::Up);
        const QImage down = spinArrowImage(SpinArrow::Down);
        QCOMPARE(up.size(), QSize(9, 6));
        QCOMPARE(down.size(), QSize(9, 6));
        for (const QImage& image : {up, down.mirrored()}) {
            for (const QPoint corner : {QPoint(0, 0), QPoint(8, 0)})
                QCOMPARE(image.pixelColor(corner).alpha(), 0);
            QCOMPARE(image.pixelColor(4, 4), QColor(0x1a, 0x1a, 0x1a));
            QVERIFY(image.pixelColor(4, 1).alpha() > 100);
            QVERIFY(image.pixelColor(1, 4).alpha() > 0);
            QCOMPARE(image.pixelColor(1, 1).alpha(), 0);
        }
    }

    void haveSmoothEdgesAndNoOutline()
    {
        for (const SpinArrow arrow : {SpinArrow::Up, SpinArrow::Down}) {
            const QImage image = spinArrowImage(arrow);
            int filled = 0;
            int smooth = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor color = image.pixelColor(x, y);
                    smooth += color.alpha() > 0 && color.alpha() < 255 ? 1 : 0;
                    filled += color.alpha() == 255 ? 1 : 0;
                    // What is nearly transparent has lost its colour to rounding.
                    if (color.alpha() > 60)
                        QVERIFY2(std::abs(color.red() - 0x1a) <= 2 && std::abs(color.blue() - 0x1a) <= 2,
                            qPrintable(color.name(QColor::HexArgb)));
                }
            }
            QVERIFY(filled >= 8);
            QVERIFY(smooth >= 8);
        }
    }

    void areWrittenToTheTemporaryFolder()
    {
        QCOMPARE(writeSpinArrow(SpinArrow::Up), m_folder->filePath(u"tavoran_spin_up.png"_s));
        QCOMPARE(writeSpinArrow(SpinArrow::Down), m_folder->filePath(u"tavoran_spin_down.png"_s));
        QCOMPARE(
            QImage(m_folder->filePath(u"tavoran_spin_up.png"_s)).pixelColor(4, 4), QColor(0x1a, 0x1a, 0x1a));
        QCOMPARE(QImage(m_folder->filePath(u"tavoran_spin_down.png"_s)).size(), QSize(9, 6));
        // A later start finds them there.
        QVERIFY(!writeSpinArrow(SpinArrow::Up).isEmpty());
    }

    void aFileIsWrittenAgainOnlyWhenItDiffers()
    {
        const QString path = writeSpinArrow(SpinArrow::Up);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        file.close();
        const QDateTime longAgo = utcTime(QDate(2001, 2, 3), QTime(4, 5));
        const auto content = [&] {
            const bool opened = file.open(QIODevice::ReadOnly);
            const QByteArray all = opened ? file.readAll() : QByteArray();
            file.close();
            return all;
        };
        const auto put = [&](const QByteArray& text) {
            return file.open(QIODevice::ReadWrite | QIODevice::Truncate) && file.write(text) == text.size()
                && file.flush() && file.setFileTime(longAgo, QFileDevice::FileModificationTime);
        };

        QVERIFY(put(bytes));
        file.close();
        QCOMPARE(writeSpinArrow(SpinArrow::Up), path);
        QCOMPARE(QFileInfo(path).lastModified(), longAgo);
        for (const QByteArray& spoilt :
            {QByteArray(), bytes.chopped(1), bytes + 'x', bytes.chopped(1) + 'x'}) {
            QVERIFY(put(spoilt));
            file.close();
            QCOMPARE(writeSpinArrow(SpinArrow::Up), path);
            QCOMPARE(content(), bytes);
        }
    }

    void aFileThatTheDiskCutIsNotUsed()
    {
        QString cut;
        {
            const fixtures::FullDisk full(20);
            cut = writeSpinArrow(SpinArrow::Up);
        }
        QCOMPARE(cut, QString());
        const QString path = writeSpinArrow(SpinArrow::Up);
        QCOMPARE(QImage(path).size(), QSize(9, 6));
    }

    void areTheUsersAlone()
    {
        const QString path = writeSpinArrow(SpinArrow::Up);
        QCOMPARE(QFile::permissions(path)
                & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
            QFile::Permissions());
    }

    void nothingIsWrittenThroughALink()
    {
        const QString treasure = m_folder->filePath(u"treasure"_s);
        QFile file(treasure);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("gold") == 4);
        file.close();
        QVERIFY(QFile::link(treasure, m_folder->filePath(u"tavoran_spin_up.png"_s)));
        QCOMPARE(writeSpinArrow(SpinArrow::Up), QString());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "gold"_ba);
    }

    void withoutItsFilesThePanelWorksAllTheSame()
    {
        // A folder is in the place of each file, and then there is no temporary folder at all.
        QVERIFY(QDir().mkpath(m_folder->filePath(u"tavoran_spin_up.png"_s)));
        QVERIFY(QDir().mkpath(m_folder->filePath(u"tavoran_spin_down.png"_s)));
        QCOMPARE(writeSpinArrow(SpinArrow::Down), QString());
        QTest::failOnWarning(QRegularExpression(u"stylesheet"_s, QRegularExpression::CaseInsensitiveOption));
        for (const QString& folder : {m_folder->path(), m_folder->filePath(u"nowhere"_s)}) {
            useTemporaryFolder(folder);
            const fixtures::ServedChart served;
            served.show();
            QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
            const auto* panel = served.chart().findChild<OneClickPanel*>();
            QTest::mouseClick(panel->findChild<QPushButton*>(), Qt::LeftButton);
            QCOMPARE(wish.size(), 1);
            QCOMPARE(upButtonColor(*panel), QColor(0xdc, 0xdc, 0xdc));
        }
    }

    void aStrangeFolderNameDoesNotBreakTheStyleSheet_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("usable");
        QTest::newRow("blank and brackets") << u"a (b) {c}; 'd' #e, \u00fc"_s << true;
        QTest::newRow("quote") << u"a\"b"_s << false;
        QTest::newRow("backslash") << u"a\\b"_s << false;
    }
    void aStrangeFolderNameDoesNotBreakTheStyleSheet()
    {
        QFETCH(QString, name);
        QFETCH(bool, usable);
        const QString strange = m_folder->filePath(name);
        QVERIFY(QDir().mkpath(strange));
        useTemporaryFolder(strange);
        QTest::failOnWarning(QRegularExpression(u"stylesheet"_s, QRegularExpression::CaseInsensitiveOption));
        const fixtures::ServedChart served;
        served.show();
        QVERIFY(QFileInfo::exists(strange + u"/tavoran_spin_up.png"_s));
        const auto* panel = served.chart().findChild<OneClickPanel*>();
        QCOMPARE(upButtonColor(*panel), QColor(0xdc, 0xdc, 0xdc));
        const QImage picture = panel->findChild<QDoubleSpinBox*>()->grab().toImage();
        QCOMPARE(fixtures::pixelsOf(picture, QRect(50, 1, 15, 14), QColor(0x1a, 0x1a, 0x1a)) > 5, usable);
    }
};

TAVORAN_TEST(tst_SpinArrows)
#include "tst_SpinArrows.moc"
