#include "tests/support/testhost.h"

#include "framework/exceptions.h"

namespace dv::test {

namespace {

class TLiteral : public TDVAbsy {
public:
    explicit TLiteral(TValuePtr value) : value_(std::move(value)) {}
    TValuePtr Evaluate() const override { return value_->Clone(); }

private:
    TValuePtr value_;
};

TDVAbsyPtr Literal(TValuePtr value) { return std::make_unique<TLiteral>(std::move(value)); }

}  // namespace

TTestHost::TTestHost() { SetHostServices({this, this, this}); }

TTestHost::~TTestHost() { SetHostServices({}); }

TTestVariable& TTestHost::Declare(const QString& name, TDVType type)
{
    auto& slot = variables_[name.toLower()];
    slot = std::make_unique<TTestVariable>(name, type, DefaultValue(type));
    return *slot;
}

const TValue* TTestHost::Value(const QString& name) const
{
    const auto it = variables_.find(name.toLower());
    return it == variables_.end() ? nullptr : &it->second->GetValue();
}

QString TTestHost::ValueText(const QString& name) const
{
    const TValue* v = Value(name);
    return v ? v->AsText() : QString();
}

void TTestHost::SetVariable(const QString& name, TValuePtr value)
{
    setVariableCalls << name;
    const auto it = variables_.find(name.toLower());
    if (it == variables_.end()) {
        throw TDVRuntimeException(QStringLiteral("Der Bezeichner \"%1\" wurde nicht als Variable deklariert!").arg(name));
    }
    it->second->Assign(std::move(value));
}

TDVVariable* TTestHost::FindVariable(const QString& name)
{
    const auto it = variables_.find(name.toLower());
    return it == variables_.end() ? nullptr : it->second.get();
}

QString TTestHost::ResolveText(const QString& text)
{
    const TDVVariable* v = FindVariable(text.trimmed());
    return v ? const_cast<TDVVariable*>(v)->GetValue().AsText() : text;
}

void TTestHost::WriteOutput(const QString& text, const QString& font, int size, int style, int color)
{
    output.push_back({text, font, size, style, color});
}

TDVAbsyPtr TTestHost::ParseSingleExpression(const QString& text)
{
    const QString t = text.trimmed();
    if (t.isEmpty()) return nullptr;
    if (t.startsWith('{')) {
        auto array = ParseArrayText(t);
        if (!array) return nullptr;
        std::vector<TDVAbsyPtr> elements;
        for (int i : array->GetIndices()) elements.push_back(Literal(array->GetVal(i).Clone()));
        return std::make_unique<TDVAbsyArray>(std::move(elements));
    }
    if (t.startsWith('[') && t.endsWith(']')) {
        std::vector<TDVAbsyPtr> elements;
        const QString inner = t.mid(1, t.size() - 2).trimmed();
        if (!inner.isEmpty()) {
            for (const QString& part : inner.split(',')) {
                auto e = ParseSingleExpression(part);
                if (!e) return nullptr;
                elements.push_back(std::move(e));
            }
        }
        return std::make_unique<TDVAbsyArray>(std::move(elements));
    }
    if (t.size() >= 2 && t.startsWith('"') && t.endsWith('"')) {
        return Literal(std::make_unique<TStringValue>(t.mid(1, t.size() - 2).replace("\"\"", "\"")));
    }
    if (t.compare("True", Qt::CaseInsensitive) == 0) return Literal(std::make_unique<TBooleanValue>(true));
    if (t.compare("False", Qt::CaseInsensitive) == 0) return Literal(std::make_unique<TBooleanValue>(false));
    if (TDVVariable* v = FindVariable(t)) return Literal(v->GetValue().Clone());
    try {
        return Literal(std::make_unique<TNumberValue>(t));
    } catch (const TDVRuntimeException&) {
        return nullptr;
    }
}

TDVAbsyPtr TTestHost::ParseExpression(const QString& text)
{
    auto node = ParseSingleExpression(text);
    if (!node) throw TDVRuntimeException(QStringLiteral("Ungültiger Ausdruck: %1").arg(text));
    return node;
}

QString TTestHost::ReplaceProjectPath(const QString& path) const
{
    QString out = path;
    out.replace(QStringLiteral("%PROJEKTPFAD%"), projectPath, Qt::CaseInsensitive);
    return out;
}

}  // namespace dv::test
