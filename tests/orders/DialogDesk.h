#pragma once

#include "app/base/SoundKind.h"
#include "app/ui/DecimalEdit.h"
#include "support/ServedClient.h"

#include <QComboBox>
#include <QPointer>
#include <QPushButton>

namespace fixtures {

/// A dialog that trades, on show over a scripted server, and its parts by their names.
template <typename Dialog> struct DialogDesk : ServedClient {
    QPointer<Dialog> dialog;
    QList<SoundKind> sounds; ///< in their order

    template <typename T> [[nodiscard]] T* part(QAnyStringView name) const
    {
        return dialog->template findChild<T*>(name.toString());
    }
    [[nodiscard]] DecimalEdit* edit(QAnyStringView name) const { return part<DecimalEdit>(name); }
    [[nodiscard]] QComboBox* combo(QAnyStringView name) const { return part<QComboBox>(name); }
    [[nodiscard]] QPushButton* button(const QString& text) const
    {
        for (QPushButton* candidate : dialog->template findChildren<QPushButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    void click(const QString& text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
    void type(QAnyStringView name, const QString& text) const
    {
        edit(name)->selectAll();
        QTest::keyClicks(edit(name), text);
    }

protected:
    ~DialogDesk() { delete dialog; }

    void show(Dialog* shown)
    {
        dialog = shown;
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(shown, &Dialog::soundDue, shown, [this](SoundKind kind) { sounds.append(kind); });
        dialog->show();
    }
};

} // namespace fixtures
