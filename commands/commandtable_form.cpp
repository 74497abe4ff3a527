// The editor dialogs this library builds; one row per dialog, added with the dialog.
#include "framework/editorform.h"
#include "framework/forms/guiforms.h"

namespace dv {

void RegisterForms() {}

}  // namespace dv
