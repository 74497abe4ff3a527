#pragma once
// MeldungsBox: a modal message with a type, a set of buttons and an optional screen position; the
// pressed button goes into the script variable ButtonResult, and Abbrechen or Abort stops the test.
#include "commands/dialogs/operatordialogs.h"
#include "framework/runedit.h"
#include "framework/translate.h"

#include <QPoint>
#include <QSize>

#include <optional>
#include <span>

namespace dv {

enum class TMsgDlgType { Warning, Error, Information, Confirmation, Count };

struct TMsgDlgTypeRow {
    TMsgDlgType value;
    const char* keyword;  // written by the editor and looked for in script text
    const char* radio;    // the dialog's radio button
    const char* caption;
};
std::span<const TMsgDlgTypeRow> MessageTypes();

enum class TMsgDlgBtn { Yes, No, OK, Cancel, Abort, Retry, Ignore, Count };

struct TMsgDlgBtnRow {
    TMsgDlgBtn value;
    const char* keyword;
    char16_t code;         // the single character that also selects the button
    int bit;
    const char* checkBox;  // "" for Abort, which only script text can choose
    const char* caption;
    int modalResult;       // what pressing it returns
};
std::span<const TMsgDlgBtnRow> MessageButtons();

// The text ButtonResult gets for a modal result; "" for a result no button gives.
QString ButtonResultText(int modalResult);
// The modal result a headless answer stands for ("JA", "ABBRECHEN" ...); nullopt for no such text.
std::optional<int> ModalResultOfText(const QString& text);

// The type a text names: each keyword found overwrites the previous, so the last row found wins;
// previous when none is found.
int ReadMessageType(const QString& text, int previous);
// The button set a text names: a row's bit for its keyword or its single character anywhere.
int ReadMessageButtons(const QString& text);
// The buttons a message with this set shows: an empty set shows OK, as the standard message dialog
// does, with and without a GUI.
int OfferedButtons(int buttons);
// The keywords of a set joined by " + ", in table order; Abort is never written.
QString MessageButtonsText(int buttons);
// The top-left pixel of a message placed at x and y percent of the screen.
QPoint MessagePosition(QSize screen, int xPercent, int yPercent);

struct TDVCmdMeldungsBoxFields {
    QString text = _("\"Hallo Benutzer!\"");
    int type = static_cast<int>(TMsgDlgType::Confirmation);
    int buttons = 4;  // OK
    int x = 0;
    int y = 0;
    bool standardPosition = true;
    bool operator==(const TDVCmdMeldungsBoxFields&) const = default;
};

class TDVCmdMeldungsBox : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdMeldungsBoxFields> {
public:
    explicit TDVCmdMeldungsBox(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("MeldungsBox")}; }
    bool IsOlderLine(const QString& line) const override;
    bool IsOlderForm(const QString& statement) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;
};

// The message the fields describe, for the run and the editor's Test button.
TMessageRequest MessageRequest(const TDVCmdMeldungsBoxFields& fields);

}  // namespace dv
