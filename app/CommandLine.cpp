#include "app/CommandLine.h"

#include <QCoreApplication>

#include <algorithm>

namespace lumaro {

CommandLine::CommandLine()
    : m_download(QStringLiteral("download"),
                 QStringLiteral("Save the HLS stream at <address> without opening a window, then "
                                "print the file's path."),
                 QStringLiteral("address"))
    , m_to(QStringLiteral("to"),
           QStringLiteral("Save into <folder> rather than the usual save folder."),
           QStringLiteral("folder"))
    , m_name(QStringLiteral("name"), QStringLiteral("Call the saved file <name>."),
             QStringLiteral("name"))
{
    m_parser.setApplicationDescription(
        QStringLiteral("Plays files, streams and IPTV playlists, and saves HLS streams."));
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    m_parser.addOptions({m_download, m_to, m_name});
    m_parser.addPositionalArgument(QStringLiteral("file|address"),
                                   QStringLiteral("What to open: a media file, an M3U playlist, "
                                                  "or an http or https address."),
                                   QStringLiteral("[file|address]"));
}

void CommandLine::process()
{
    m_parser.process(*QCoreApplication::instance());
}

bool CommandLine::wantsWindow(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // What this does not know may be meant for the window system.
    m_parser.parse(arguments);
    const QStringList set = m_parser.optionNames();
    return std::ranges::none_of(set, [](const QString &option) {
        return QStringList{QStringLiteral("download"), QStringLiteral("help"),
                           QStringLiteral("h"),        QStringLiteral("help-all"),
                           QStringLiteral("version"),  QStringLiteral("v")}
            .contains(option);
    });
}

std::optional<QString> CommandLine::optionalValue(const QCommandLineOption &option) const
{
    return m_parser.isSet(option) ? std::optional(m_parser.value(option)) : std::nullopt;
}

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("lumaro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LUMARO_VERSION));
}

} // namespace lumaro
