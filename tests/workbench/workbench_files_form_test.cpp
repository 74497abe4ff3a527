// Script files in the workbench: open, save and recent files, the encodings and line ends of
// Windows stations, and the question before unsaved changes are dropped.
#include "tests/commands/formdriver.h"
#include "tests/workbench/workbenchdriver.h"
#include "workbench/scripteditor.h"
#include "workbench/scriptfile.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QStatusBar>
#include <QStringEncoder>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using dv::test::OnModal;
using test::ReadFile;
using test::WriteFile;
using test::WorkbenchTest;

TEST_F(WorkbenchTest, SavedScriptOpensAgainAndHeadsTheRecentFiles)
{
    const QString first = folder.filePath("eins.dvs");
    const QString second = folder.filePath("zwei.dvs");
    SetScript("Log(\"eins\")");
    ASSERT_TRUE(window.SaveFile(first));
    SetScript("Log(\"zwei\")");
    ASSERT_TRUE(window.SaveFile(second));
    EXPECT_FALSE(window.SaveFile(folder.filePath("fehlt/drei.dvs")));
    ASSERT_TRUE(window.OpenFile(first));
    EXPECT_EQ(window.Editor().toPlainText(), "Log(\"eins\")");
    ASSERT_TRUE(window.OpenFile(second));
    ASSERT_TRUE(window.OpenFile(first));
    EXPECT_EQ(window.RecentFiles(), QStringList({first, second}));
    EXPECT_FALSE(window.OpenFile(folder.filePath("fehlt.dvs")));
    EXPECT_EQ(window.FileName(), first);
}

QByteArray Utf16(const QString& text, QStringEncoder::Encoding encoding)
{
    return QStringEncoder(encoding, QStringEncoder::Flag::WriteBom)(text);
}

// Files as Windows stations and editors write them: read as dvrun reads them (UTF-8, else
// Windows-1252) or by their byte order mark, and saved unchanged in the same bytes.
TEST_F(WorkbenchTest, ScriptFilesKeepTheirEncodingAndLineEndsThroughOpenAndSave)
{
    const QString text = "Log(\"Prüfung µs €\")\nLog(\"zwei\")\n";
    const QString crlf = QString(text).replace("\n", "\r\n");
    const struct { const char* name; QByteArray bytes; TTextEncoding encoding; bool crlf; } rows[] = {
        {"cp1252-crlf", QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\r\nLog(\"zwei\")\r\n"), TTextEncoding::Windows1252, true},
        {"cp1252-lf", QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\nLog(\"zwei\")\n"), TTextEncoding::Windows1252, false},
        {"utf16le-crlf", Utf16(crlf, QStringEncoder::Utf16LE), TTextEncoding::Utf16LE, true},
        {"utf16be-lf", Utf16(text, QStringEncoder::Utf16BE), TTextEncoding::Utf16BE, false},
        {"utf8bom-crlf", "\xEF\xBB\xBF" + crlf.toUtf8(), TTextEncoding::Utf8Bom, true},
        {"utf8-lf", text.toUtf8(), TTextEncoding::Utf8, false},
    };
    for (const auto& r : rows) {
        const QString path = folder.filePath(QString(r.name) + ".dvs");
        WriteFile(path, r.bytes);
        ASSERT_TRUE(window.OpenFile(path)) << r.name;
        EXPECT_EQ(window.Editor().toPlainText(), text) << r.name;
        EXPECT_EQ(window.FileFormat().encoding, r.encoding) << r.name;
        EXPECT_EQ(window.FileFormat().crlf, r.crlf) << r.name;
        ASSERT_TRUE(window.SaveFile(path)) << r.name;
        EXPECT_EQ(ReadFile(path), r.bytes) << r.name;
    }

    // What the script logs is what was in the Windows file.
    ASSERT_TRUE(window.OpenFile(folder.filePath("cp1252-crlf.dvs")));
    RunToEnd();
    EXPECT_TRUE(LogRows().contains("1|Prüfung µs €|Info")) << LogRows().join('\n').toStdString();

    // An edit stays in the file's code page; a character it lacks makes the file UTF-8.
    const QString path = folder.filePath("cp1252-crlf.dvs");
    window.Editor().GoToLine(2);
    QTest::keyClick(&window.Editor(), Qt::Key_End);
    window.Editor().insertPlainText(" // Länge");
    ASSERT_TRUE(window.SaveFile(path));
    EXPECT_EQ(ReadFile(path), QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\r\nLog(\"zwei\") // L\xe4nge\r\n"));
    window.Editor().insertPlainText(" \u2192");
    ASSERT_TRUE(window.SaveFile(path));
    EXPECT_EQ(ReadFile(path), QString("Log(\"Prüfung µs €\")\r\nLog(\"zwei\") // Länge \u2192\r\n").toUtf8());
    EXPECT_EQ(window.FileFormat().encoding, TTextEncoding::Utf8);
    EXPECT_TRUE(window.statusBar()->currentMessage().contains("UTF-8")) << window.statusBar()->currentMessage().toStdString();
}

// Answers the "Änderungen speichern?" question with the button captioned answer.
void Answer(const char* answer, QStringList* buttons = nullptr)
{
    OnModal("SaveChanges", [answer, buttons](QWidget& d) {
        auto& box = static_cast<QMessageBox&>(d);
        EXPECT_EQ(box.text(), "Änderungen speichern?");
        QAbstractButton* chosen = nullptr;
        for (QAbstractButton* b : box.buttons()) {
            if (buttons) *buttons << b->text();
            if (b->text() == answer) chosen = b;
        }
        ASSERT_NE(chosen, nullptr) << answer;
        chosen->click();
    });
}

TEST_F(WorkbenchTest, UnsavedChangesAreOnlyDroppedWhenTheUserSaysSo)
{
    QAction* newScript = window.findChild<QAction*>("ActionNew");
    ASSERT_NE(newScript, nullptr);
    const QString path = folder.filePath("skript.dvs");
    WriteFile(path, "Log(1)");
    ASSERT_TRUE(window.OpenFile(path));

    newScript->trigger();  // nothing changed: no question
    EXPECT_TRUE(window.Editor().toPlainText().isEmpty());

    ASSERT_TRUE(window.OpenFile(path));
    window.Editor().appendPlainText("Log(2)");
    QStringList buttons;
    Answer("Abbrechen", &buttons);
    newScript->trigger();
    EXPECT_EQ(buttons.size(), 3);
    for (const char* b : {"Ja", "Nein", "Abbrechen"}) EXPECT_TRUE(buttons.contains(b)) << b;
    EXPECT_EQ(window.Editor().toPlainText(), "Log(1)\nLog(2)");
    Answer("Abbrechen");
    EXPECT_FALSE(window.close()) << "cancelled: the window stays";
    EXPECT_TRUE(window.isVisible());

    Answer("Ja");
    newScript->trigger();
    EXPECT_EQ(ReadFile(path), "Log(1)\nLog(2)");
    EXPECT_TRUE(window.Editor().toPlainText().isEmpty());

    window.Editor().setPlainText("Log(3)");
    Answer("Nein");
    ASSERT_FALSE(window.RecentFiles().isEmpty());
    QMenu* recent = nullptr;
    for (QMenu* m : window.findChildren<QMenu*>()) {
        if (m->title() == "&Zuletzt geöffnet") recent = m;
    }
    ASSERT_NE(recent, nullptr);
    recent->actions().first()->trigger();
    EXPECT_EQ(window.Editor().toPlainText(), "Log(1)\nLog(2)");
    EXPECT_EQ(ReadFile(path), "Log(1)\nLog(2)") << "No: the file is not written";
}

}  // namespace
}  // namespace dv::workbench
