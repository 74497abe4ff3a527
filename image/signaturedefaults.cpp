#include "image/signaturedefaults.h"

namespace dv::image {

void SetSignatureDefaults(TDVThreadRunEdit& command)
{
    for (const QString& name : command.Signature().ParamNames()) {
        const TDVParamDecl* decl = command.Signature().Find(name);
        command.SetBoundField(name, decl ? decl->defaultText : QString());
    }
}

}  // namespace dv::image
