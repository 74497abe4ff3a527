#include "framework/parser.h"

#include "framework/services.h"

namespace dv {

TValuePtr TDVAbsyArray::Evaluate() const
{
    auto array = std::make_unique<TArrayValue>();
    for (std::size_t i = 1; i < elements_.size(); ++i) array->Append(elements_[i]->Evaluate());
    return array;
}

QString ResolveProjectPath(const QString& fileName)
{
    TDVParser* parser = CurrentParser();
    return parser ? parser->GetEnvironment().ReplaceProjectPath(fileName) : fileName;
}

}  // namespace dv
