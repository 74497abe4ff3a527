#pragma once
// Edits one script line through a structure command with its dialog driven offscreen.
#include "framework/runedit.h"
#include "tests/commands/formdriver.h"

#include <functional>

namespace dv::test {

struct TEdited {
    bool confirmed;
    QString line;
};

// Edits line through the command; act works the dialog named form and must close it.
inline TEdited EditLine(TDVRunEdit& command, const QString& line, const QString& form, std::function<void(QWidget&)> act)
{
    OnModal(form, std::move(act));
    QString text;
    QString script = line;
    const bool confirmed = command.EditCommand(1, 1, text, script);
    return {confirmed, script};
}

// Types text into the box (nullptr: leaves it) and closes the dialog with the button.
inline std::function<void(QWidget&)> TypeAndClose(const char* box, const char* text, const char* button, QString* shown)
{
    return [=](QWidget& d) {
        *shown = Find<QLineEdit>(d, box).text();
        if (text) Type(d, box, text);
        if (QString(button) == "Escape") {
            QTest::keyClick(&d, Qt::Key_Escape);
        } else {
            Click(d, button);
        }
    };
}

}  // namespace dv::test
