#pragma once
// An in-process host for command tests: a variable table, recorded output and status texts, a stop
// event, and a parser for literal expressions. Constructing one installs it; destroying uninstalls.
#include "framework/parser.h"
#include "framework/services.h"

#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <vector>

namespace dv::test {

struct TOutputLine { QString text, font; int size, style, color; };

class TTestVariable : public TDVVariable {
public:
    TTestVariable(QString name, TDVType type, TValuePtr value)
        : name_(std::move(name)), type_(type), value_(std::move(value)) {}
    QString GetName() const override { return name_; }
    TDVType GetType() const override { return type_; }
    TValue& GetValue() override { return *value_; }
    void Assign(TValuePtr value) { value_ = std::move(value); }

private:
    QString name_;
    TDVType type_;
    TValuePtr value_;
};

class TTestHost : public IDVGetParser, public IDVVarAccess, public IDVTestEnvironment, public TDVParser, public TDVEnvironment {
public:
    TTestHost();
    ~TTestHost() override;

    // Declares a variable with its type's default value.
    TTestVariable& Declare(const QString& name, TDVType type);
    // The variable's current value as text ("" for an undeclared one).
    QString ValueText(const QString& name) const;
    const TValue* Value(const QString& name) const;

    // IDVGetParser
    TDVParser* GetParser() override { return this; }
    // IDVVarAccess
    void SetVariable(const QString& name, TValuePtr value) override;
    void AttachVariableEditor(QObject* control) override { attached.push_back(control); }
    TDVVariable* FindVariable(const QString& name) override;
    QString ResolveText(const QString& text) override;
    // IDVTestEnvironment
    void WriteOutput(const QString& text, const QString& font, int size, int style, int color) override;
    void SetStatusText(const QString& text) override { statusTexts << text; }
    void StopTest() override { ++stopCalls; }
    TRunControl& GetRunControl() override { return runControl; }
    void SetLaborVisible(bool show) override { laborVisible.push_back(show); }
    // TDVParser: literals only (numbers, "strings", True/False, [a, b], {72}{65}) and variable names.
    TDVAbsyPtr ParseExpression(const QString& text) override;
    TDVAbsyPtr ParseSingleExpression(const QString& text) override;
    TDVEnvironment& GetEnvironment() override { return *this; }
    // TDVEnvironment: replaces "%PROJEKTPFAD%" by projectPath.
    QString ReplaceProjectPath(const QString& path) const override;

    std::vector<TOutputLine> output;
    QStringList statusTexts;
    QStringList setVariableCalls;  // names, in call order
    std::vector<bool> laborVisible;
    std::vector<QObject*> attached;
    int stopCalls = 0;
    QString projectPath = QStringLiteral("/projekt");
    TRunControl runControl;

private:
    std::map<QString, std::unique_ptr<TTestVariable>> variables_;  // keyed by lower-case name
};

}  // namespace dv::test
