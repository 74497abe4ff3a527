#pragma once
// The named parameter texts of one script call, keyed by the names the signature spells.
#include "framework/values.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace dv {

class TParamList {
public:
    explicit TParamList(unsigned capacity = 16);
    TParamList(const TParamList& other);
    TParamList& operator=(const TParamList& other);
    TParamList(TParamList&&) noexcept = default;
    TParamList& operator=(TParamList&&) noexcept = default;

    // Adds an entry, or replaces the text of an entry of the same name (names are case-exact).
    void AddString(const QString& name, const QString& text);
    // At run time the host also attaches the evaluated value of an input parameter.
    void AddValue(const QString& name, const QString& text, TValuePtr value);
    // The same with the value's printed form (AsText) as the text, made only when it is asked for:
    // a command that reads the value of a large array never pays for its text.
    void AddValue(const QString& name, TValuePtr value);
    // The entry's text; empty when absent.
    QString GetString(const QString& name) const;
    // The entry evaluated into a new value owned by the caller: the value the host attached, else
    // the text parsed and evaluated by the current parser, else the text as a string.
    TValuePtr GetValue(const QString& name) const;
    bool Contains(const QString& name) const;
    void Clear() { entries_.clear(); }

    // Names in the order they were added; for writing lines and for tests.
    QStringList Names() const;
    int Count() const { return static_cast<int>(entries_.size()); }
    bool operator==(const TParamList& other) const;

private:
    struct Entry {
        QString name;
        mutable QString text;
        TValuePtr value;
        mutable bool textPending = false;  // text is still to be made from value
        const QString& Text() const;
    };
    const Entry* Find(const QString& name) const;
    void Put(const QString& name, QString text, TValuePtr value, bool textPending);
    std::vector<Entry> entries_;
};

}  // namespace dv
