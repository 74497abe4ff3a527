#pragma once
// Whether dvrun can show windows: a display is used only when a server answers on it, so that a
// stale DISPLAY (an ended ssh session, a CI runner) makes the run headless instead of aborting it.
#include <QByteArray>
#include <QString>

namespace dv::host {

struct TDisplayChoice {
    bool windows = false;  // the operator sees what is shown
    QByteArray platform;   // for QT_QPA_PLATFORM; empty: leave it as it is
    QString warning;       // a display was named but cannot be reached
};

// Looks for a display only; creates no application object. An explicit QT_QPA_PLATFORM is kept
// as the user's choice.
TDisplayChoice ChooseDisplay();

}  // namespace dv::host
