#pragma once
// The parameter fields of the scope editor's function page: for each analysis function, which of
// the page's edits and choice lists it uses, their labels and items, and which decoded setting
// each one edits. The page relabels itself from this table (SetInputParams), and the editor fill
// and OK move values through it, so the widgets hold no knowledge of the functions.
#include "scope/scopesettings.h"

#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace dv::scope {

// The function page has this many edits and choice lists; a function uses the first few of each.
inline constexpr int kFxEditFields = 4;
inline constexpr int kFxChoiceFields = 3;

// The decoded setting a field edits.
enum class TFxSetting { Arg1, Arg2, Arg3, Arg4, Arg5, Order, RmsOffset, Sinad1, Sinad2, Sinad3, SinadWindow, Channel };

struct TFxEditField {
    QString label;
    TFxSetting setting;
    QString defaultText;
};

struct TFxChoiceField {
    QString label;
    QStringList items;
    TFxSetting setting;
    int base;  // the number written for the first item: 0 (item index) or 1 (item index + 1)
};

struct TFxFields {
    std::vector<TFxEditField> edits;
    std::vector<TFxChoiceField> choices;
};

// The fields of one function, labels translated.
TFxFields FxFields(TScopeFnc function);

// What the page's fields hold: edit texts and choice indices, in page order.
struct TFxFieldValues {
    std::array<QString, kFxEditFields> edits;
    std::array<int, kFxChoiceFields> choices{};
    bool operator==(const TFxFieldValues&) const = default;
};

// The fields of a function as a new one opens: edits at their defaults, choices on their first
// item.
TFxFieldValues DefaultFxFieldValues(TScopeFnc function);
// The decoded fields of s.FxFunction. A choice whose setting is no number of the list opens on
// the first item.
TFxFieldValues FxFieldValues(const TDecodedSettings& s);
// The fields back into the settings of s.FxFunction.
void StoreFxFieldValues(const TFxFieldValues& values, TDecodedSettings& s);

}  // namespace dv::scope
