#include "app/CommandLine.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace lumaro {

CommandLine::CommandLine()
    : m_finder(QStringLiteral("finder"),
               QCoreApplication::translate("CommandLine", "Open the M3U8 Stream Finder too."))
    , m_download(QStringLiteral("download"),
                 QCoreApplication::translate(
                     "CommandLine",
                     "Save the HLS stream at <address> without opening a window, then "
                     "print the file's path."),
                 QStringLiteral("address"))
    , m_to(QStringLiteral("to"),
           QCoreApplication::translate("CommandLine",
                                       "Save into <folder> rather than the usual save folder."),
           QStringLiteral("folder"))
    , m_name(QStringLiteral("name"),
             QCoreApplication::translate("CommandLine", "Call the saved file <name>."),
             QStringLiteral("name"))
{
    m_parser.setApplicationDescription(QCoreApplication::translate(
        "CommandLine", "Plays files, streams and IPTV playlists, and saves HLS streams."));
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    m_parser.addOptions({m_finder, m_download, m_to, m_name});
    m_parser.addPositionalArgument(
        QStringLiteral("file|address"),
        QCoreApplication::translate("CommandLine",
                                    "What to open: media files, an M3U playlist, "
                                    "or an http or https address."),
        QStringLiteral("[file...|address]"));
}

void CommandLine::process()
{
    m_parser.process(*QCoreApplication::instance());
    if (const QString problem = contradiction(); !problem.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(problem));
        // No other thread runs. NOLINTNEXTLINE(concurrency-mt-unsafe)
        std::exit(2);
    }
}

QString CommandLine::contradiction() const
{
    if (!m_parser.isSet(m_download))
        return folder() || name()
            ? QCoreApplication::translate("CommandLine", "--to and --name go with --download.")
            : QString();
    if (m_parser.values(m_download).size() > 1 || wantsFinder() || !filesAndAddresses().isEmpty())
        return QCoreApplication::translate("CommandLine", "--download takes one address.");
    if (folder() && folder()->isEmpty())
        return QCoreApplication::translate("CommandLine", "--to needs a folder.");
    return {};
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
