#include "bench/report/NpmPeer.h"

#include <QJsonDocument>
#include <QProcess>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

const QString sources = QStringLiteral(LUMARO_SOURCES);

Measured<QByteArray> outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    constexpr std::chrono::milliseconds patience = 5min;
    if (!process.waitForFinished(int(patience.count()))
        || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::unexpected(QString(u"%1 %2 failed."_s.arg(program, arguments.value(0))));
    return process.readAllStandardOutput();
}

} // namespace

Measured<QJsonObject> askNpmPeer(const QString &group, const QString &name, const QString &version,
                                 const QStringList &arguments)
{
    const auto folder = outputOf(sources + u"/tools/npm-peer.sh"_s, {name, version});
    if (!folder)
        return std::unexpected(folder.error());
    const QStringList all{sources + u"/bench/%1/peer.cjs"_s.arg(group),
                          QString::fromLocal8Bit(folder->trimmed())};
    const auto output = outputOf(u"node"_s, all + arguments);
    if (!output)
        return std::unexpected(output.error());
    const QJsonDocument said = QJsonDocument::fromJson(*output);
    if (!said.isObject())
        return std::unexpected(QString(name + u" was not measured."_s));
    return said.object();
}

} // namespace lumaro
