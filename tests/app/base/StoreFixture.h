#pragma once

#include "app/FileFixture.h"
#include "app/base/SettingsStore.h"

#include <QtTest>

#include <memory>

#include <sys/stat.h>

/// What the tests of the stored settings share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline QString layoutOf(int charts)
{
    return u"[{\"symbol\": \"EURUSD\", \"timeframe\": \"15m\"}, x]\n"_s.repeated(charts);
}

/// Some of everything that a terminal keeps.
inline void saveEverything(SettingsStore& store, const QString& layout)
{
    store.setValue("alerts"_L1, u"[{\"symbol\":\"EURUSD\",\"price\":1.1}]"_s);
    store.setValue("auth/email"_L1, u"a@b.example"_s);
    store.setValue("auth/token"_L1, u"token-one"_s);
    store.setValue("charts/layout"_L1, layout);
    store.setValue("ui/theme"_L1, u"dark"_s);
    store.setValue("window/state"_L1, QByteArray::fromHex("00ff01ab"));
}

/// Whether all of it is there, with one of these layouts, whatever became of e-mail address and theme since.
inline bool holdsEverything(const SettingsStore& store, const QStringList& layouts)
{
    const QString email = store.value("auth/email"_L1).toString();
    const QString theme = store.value("ui/theme"_L1).toString();
    return store.value("alerts"_L1).toString() == u"[{\"symbol\":\"EURUSD\",\"price\":1.1}]"_s
        && (email == u"a@b.example"_s || email == u"new@b.example"_s)
        && store.value("auth/token"_L1).toString() == u"token-one"_s
        && layouts.contains(store.value("charts/layout"_L1).toString())
        && (theme == u"dark"_s || theme == u"light"_s)
        && store.value("window/state"_L1).toByteArray() == QByteArray::fromHex("00ff01ab");
}

/// A place of its own for each case's store.
class StoreTest : public QObject {
protected:
    void makePlace()
    {
        ::umask(022);
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(m_root->isValid());
        m_path = m_root->filePath(u"config/Tavoran/Terminal.conf"_s);
    }
    /// What a terminal leaves that saved everything and ended.
    void saveAndEnd(const QString& layout = layoutOf(2)) const
    {
        SettingsStore store(m_path);
        saveEverything(store, layout);
        QVERIFY(store.sync());
    }

    std::unique_ptr<QTemporaryDir> m_root;
    QString m_path;
};

} // namespace fixtures
