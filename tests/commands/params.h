#pragma once
// Builds a parameter list from name/text pairs for command tests.
#include "framework/paramlist.h"

#include <initializer_list>
#include <ostream>
#include <utility>

// Readable failure messages for texts and lists.
inline void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }

namespace dv {
inline void PrintTo(const TParamList& params, std::ostream* os)
{
    for (const QString& name : params.Names()) *os << name.toStdString() << "=" << params.GetString(name).toStdString() << "; ";
}
}  // namespace dv

namespace dv::test {

using TParamRows = std::initializer_list<std::pair<const char*, const char*>>;

inline TParamList MakeParams(TParamRows rows)
{
    TParamList params;
    for (const auto& [name, text] : rows) params.AddString(QString::fromUtf8(name), QString::fromUtf8(text));
    return params;
}

}  // namespace dv::test
