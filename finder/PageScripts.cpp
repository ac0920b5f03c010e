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

QString mediaPauseScript()
{
    return builtInScript(QStringLiteral(":/lumaro/finder/scripts/pause-media.js"));
}

QString mediaStopScript()
{
    return QStringLiteral("document.querySelectorAll('video,audio').forEach(function(m){ "
                          "m.pause(); m.src = ''; });");
}

} // namespace lumaro
