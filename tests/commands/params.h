#pragma once
// Parameter lists from name/text pairs, their read-back through a command, and the message of a raised
// runtime error, for command tests.
#include "framework/exceptions.h"
#include "framework/paramlist.h"

#include <initializer_list>
#include <optional>
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

// The list that the command's SetParams and then ReadParams make of params: params itself when the two agree.
template <class Command>
TParamList ReadBack(Command& command, const TParamList& params)
{
    TParamList out;
    command.SetDefaults();
    command.SetParams(params);
    command.ReadParams(out);
    return out;
}

// Runs body: the message of the error (a runtime error unless told) it raised, nullopt when it ran through.
template <class Exception = TDVRuntimeException, class Body>
std::optional<QString> RaisedMessage(Body&& body)
{
    try {
        body();
    } catch (const Exception& e) {
        return e.Message();
    }
    return std::nullopt;
}

}  // namespace dv::test
