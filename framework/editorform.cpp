#include "framework/editorform.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

#include <QGuiApplication>

#include <map>
#include <mutex>

namespace dv {

namespace {
std::mutex g_mutex;
std::map<QString, TEditorFormFactory> g_factories;
}  // namespace

void RegisterEditorForm(const QString& formClass, TEditorFormFactory factory)
{
    std::lock_guard lock(g_mutex);
    g_factories[formClass] = std::move(factory);
}

void UnregisterEditorForms()
{
    std::lock_guard lock(g_mutex);
    g_factories.clear();
}

bool HasEditorForm(const QString& formClass)
{
    std::lock_guard lock(g_mutex);
    return g_factories.contains(formClass);
}

std::unique_ptr<TDVEditorForm> CreateEditorForm(const QString& formClass, TDVRunEdit& command)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        throw TDravikException(Format(_("Der Dialog %s kann nicht gezeigt werden: keine grafische Oberfläche"), {formClass}));
    }
    TEditorFormFactory factory;
    {
        std::lock_guard lock(g_mutex);
        const auto it = g_factories.find(formClass);
        if (it != g_factories.end()) factory = it->second;
    }
    if (formClass.isEmpty() || !factory) {
        throw TDravikException(Format(_("Für diesen Befehl gibt es keinen Dialog %s"), {formClass}));
    }
    return factory(command);
}

}  // namespace dv
