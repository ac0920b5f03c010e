#include "finder/PageScripts.h"

#include "platform/BuiltInScript.h"

namespace lumaro {

QString resourceReporterScript()
{
    return builtInScript(QStringLiteral(":/lumaro/finder/scripts/resource-reporter.js"));
}

QString adBlockerFlagScript(bool enabled)
{
    return enabled ? QStringLiteral("window.__varnAdBlockerEnabled = true;")
                   : QStringLiteral("window.__varnAdBlockerEnabled = false;");
}

QString popupOverrideScript()
{
    return builtInScript(QStringLiteral(":/lumaro/finder/scripts/popup-override.js"));
}

} // namespace lumaro
