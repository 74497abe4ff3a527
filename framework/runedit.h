#pragma once
// The host base classes every command derives from, with their operations in the host's slot order.
// A command keeps its parameter texts in fields of its own (a value struct); its editor dialog
// lives in the dialog layer and is reached through Form().
#include "framework/paramlist.h"
#include "framework/signature.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace dv {

class TDVParser;
class TDVEditorForm;
class TDVScriptImporter;  // the host's importer of older script lines

// Base of the editor-only structure commands (loop, case, if-then-else, comment).
class TDVRunEdit {
public:
    // formClass: the class name of the command's editor dialog ("" for none).
    explicit TDVRunEdit(QString formClass = {});
    virtual ~TDVRunEdit();
    TDVRunEdit(const TDVRunEdit&) = delete;
    TDVRunEdit& operator=(const TDVRunEdit&) = delete;

    // 0: opens the editor at a place in the script; script carries the current line in and the
    // new line out; true when the user confirmed.
    virtual bool EditCommand(int x, int y, QString& text, QString& script);
    // 1: run-time entry with the script text.
    virtual void RunCommand(const QString& script, TParamList& params);
    // 2: an existing script text rewritten (import, re-read).
    virtual QString RecodeScript(const QString& script, TDVScriptImporter* importer);
    // 3
    virtual void SetDefaults();
    // 4
    virtual void PostEdit();
    // 5
    virtual QString GetDescription(const QString& name);

    const QString& FormClass() const { return formClass_; }
    // The command's editor dialog, created on first use. Raises TDravikException when no GUI
    // exists or no dialog is registered for FormClass().
    TDVEditorForm& Form();

private:
    QString formClass_;
    std::unique_ptr<TDVEditorForm> form_;
};

// Base of commands that run on a worker thread of the host.
class TDVThreadRunEdit : public TDVRunEdit {
public:
    TDVThreadRunEdit(QString signature, QString formClass, TDVParser* parser);
    // The signature and dialog the catalogue lists for commandClass.
    TDVThreadRunEdit(const char* commandClass, TDVParser* parser);
    ~TDVThreadRunEdit() override;

    using TDVRunEdit::GetDescription;
    void RunCommand(const QString& script, TParamList& params) override;

    // 6: the procedure name.
    virtual QString GetID();
    // 7: true when every parameter without a default is in the list.
    virtual bool CheckParams(const TParamList& params);
    // 8 is the virtual constructor Create(parser): see registry.h.
    // 9: the run-time body on the worker thread.
    virtual void RunThreaded(TParamList& params);
    // 10: SetParams, the dialog modally; on OK Clear and ReadParams. Cancel leaves the list alone.
    virtual bool Edit(TParamList& params);
    // 11: fields from the list. The default binds one text field per signature parameter.
    virtual void SetParams(const TParamList& params);
    // 12: fields into the list, in signature order.
    virtual void ReadParams(TParamList& params);
    // 13: a line of the older script form into fields and list; false when not understood.
    virtual bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer);
    // 14
    virtual void ParseCommandLine(const QString& script, QString& rest, TParamList& params);
    // 15
    virtual void V3ParamHandling(QString& script);
    // 16
    virtual void SetClientData(void*& obj);
    // 17: the editor's one-line description.
    virtual QString GetDescription(const QString& name, const TParamList& params);

    // Procedure names of the older line form this command's DecodeScript reads.
    virtual QStringList OlderNames() const { return {}; }
    // Whether a line has this command's older form; the importer hands DecodeScript only such
    // lines, and only when the current grammar cannot read them. None without an older form.
    virtual bool IsOlderLine(const QString& /*line*/) const { return false; }
    // Whether the body evaluates the named parameter's text as an expression (GetValue) with the
    // settings in params, rather than taking its characters: the importer then keeps an older
    // text that reads as an expression as it is written.
    virtual bool EvaluatesText(const TParamList& /*params*/, const QString& /*name*/) const { return false; }
    // Whether an older line is certainly one even where the current grammar reads it with words
    // the script does not declare ("[mbOK]" reads as an array literal): the importer decodes it
    // instead of keeping it with a warning. Commands whose older lines never read keep false.
    virtual bool IsOlderForm(const QString& /*statement*/) const { return false; }

    // Host helpers: AddDefaults adds each absent parameter that has a default with its default
    // text; EvaluateParams is the host's and does nothing here.
    void AddDefaults(TParamList& params) const;
    void EvaluateParams(TParamList& params) const;

    const QString& SignatureText() const { return signatureText_; }
    const TDVSignature& Signature() const { return signature_; }
    TDVParser* Parser() const { return parser_; }

    // The fields of the default binding, one text per signature parameter in signature order;
    // dialogs bind controls named DVEdit_<name>, DVCheckBox_<name>, DVRadioButton_<name> to them.
    QString BoundField(const QString& name) const;
    void SetBoundField(const QString& name, const QString& text);

private:
    QString signatureText_;
    TDVSignature signature_;
    TDVParser* parser_;
    std::vector<std::pair<QString, QString>> boundFields_;
};

// Base of commands that run directly in the interpreter's thread.
class TDVFuncRunEdit : public TDVThreadRunEdit {
public:
    using TDVThreadRunEdit::TDVThreadRunEdit;

    void RunCommand(const QString& script, TParamList& params) override;
    void RunThreaded(TParamList& params) override;
    // 18: the run-time body.
    virtual void Run(TParamList& params);
    // 19: the editor's test button: runs the body on the current fields and returns the outcome
    // text shown as "Ergebnis = %s"; empty when the command has none.
    virtual QString OnEditorTest();
};

// A command whose parameter texts are one value struct: Fields() reads it, SetFields() commits a
// dialog's edited copy in one call, SetDefaults() resets it.
template <class Base, class FieldStruct>
class TDVFieldsCommand : public Base {
public:
    using TFields = FieldStruct;
    using Base::Base;

    const TFields& Fields() const { return fields_; }
    void SetFields(const TFields& fields) { fields_ = fields; }
    void SetDefaults() override { fields_ = TFields{}; }

protected:
    TFields fields_{};
};

}  // namespace dv
