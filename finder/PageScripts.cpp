#include "finder/PageScripts.h"

#include <QFile>

namespace lumaro {

namespace {

QString script(const QString &name)
{
    QFile file(u":/lumaro/finder/scripts/" + name);
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT(opened);
    return opened ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

QString resourceReporterScript()
{
    return script(QStringLiteral("resource-reporter.js"));
}

QString adBlockerFlagScript(bool enabled)
{
    return enabled ? QStringLiteral("window.__varnAdBlockerEnabled = true;")
                   : QStringLiteral("window.__varnAdBlockerEnabled = false;");
}

QString popupOverrideScript()
{
    return script(QStringLiteral("popup-override.js"));
}

} // namespace lumaro
