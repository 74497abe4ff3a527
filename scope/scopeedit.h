#pragma once
// Editing a Scope call: the scope editor as the command sees it, the editor fill that decoding for
// the editor triggers, and the way the call's two arguments become the texts the editor works on
// and back.
#include "scope/scopesettings.h"

#include <QString>

#include <functional>

namespace dv::scope {

// TFormScope.Edit(var Command, var Special) behind the command's dialog: on OK both texts are
// replaced by what the editor writes; otherwise neither changes.
class IScopeEditor {
public:
    virtual ~IScopeEditor() = default;
    virtual bool Edit(QString& command, QString& special) = 0;
};

// Called by DecodeScript with the running flag false to fill the editor's controls from the
// decoded settings. Empty: nothing is called.
void SetEditorFillHook(std::function<void(const TDecodedSettings&)> hook);
void FillEditor(const TDecodedSettings& settings);

// The text an argument of a call line stands for in the editor: a whole string literal gives its
// characters ("" read as one quote); any other expression ("[" + A + "]") gives the text between
// its first and last quote as written, so that the editor keeps the pieces between the tags.
QString ArgumentText(const QString& argument);
// Back into an argument: written as a string literal when the argument was one (or was no
// expression in quotes at all), otherwise between the same outer quotes as it came.
QString ArgumentOf(const QString& text, const QString& formerArgument);
// The tags of a Command as the editor writes it: "Scope(" and the closing ");" taken off.
QString CommandTags(const QString& command);

}  // namespace dv::scope
