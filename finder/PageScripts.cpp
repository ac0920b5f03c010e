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

} // namespace lumaro
