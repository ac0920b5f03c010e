#include "app/Application.h"
#include "app/TerminalApplication.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>

#include <algorithm>

namespace {

/// What the command line may say.
struct Options
{
    QCommandLineOption download{QStringLiteral("download"),
                                QStringLiteral("Save the HLS stream at <address> without opening "
                                               "a window, then print the file's path."),
                                QStringLiteral("address")};
    QCommandLineOption to{QStringLiteral("to"),
                          QStringLiteral("Save into <folder> rather than the usual save folder."),
                          QStringLiteral("folder")};
    QCommandLineOption name{QStringLiteral("name"), QStringLiteral("Call the saved file <name>."),
                            QStringLiteral("name")};
    QCommandLineParser parser;

    Options()
    {
        parser.setApplicationDescription(
            QStringLiteral("Plays files, streams and IPTV playlists, and saves HLS streams."));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOptions({download, to, name});
        parser.addPositionalArgument(QStringLiteral("file|address"),
                                     QStringLiteral("What to open: a media file, an M3U playlist, "
                                                    "or an http or https address."),
                                     QStringLiteral("[file|address]"));
    }

    std::optional<QString> optionalValue(const QCommandLineOption &option) const
    {
        return parser.isSet(option) ? std::optional(parser.value(option)) : std::nullopt;
    }
};

/// Whether a display is needed must be known before any application object is made.
bool wantsWindow(int argc, char *argv[])
{
    Options options;
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // What this does not know may be meant for the window system.
    options.parser.parse(arguments);
    const QStringList set = options.parser.optionNames();
    return std::ranges::none_of(set, [](const QString &option) {
        return QStringList{QStringLiteral("download"), QStringLiteral("help"),
                           QStringLiteral("h"),        QStringLiteral("help-all"),
                           QStringLiteral("version"),  QStringLiteral("v")}
            .contains(option);
    });
}

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("lumaro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LUMARO_VERSION));
}

int runInTerminal(int argc, char *argv[])
{
    const QCoreApplication qt(argc, argv);
    nameApplication();
    Options options;
    options.parser.process(qt);
    lumaro::TerminalApplication application(lumaro::Application::Folders::standard());
    return application.download(options.parser.value(options.download),
                                options.optionalValue(options.to),
                                options.optionalValue(options.name));
}

int runInWindow(int argc, char *argv[])
{
    lumaro::Application::prepare();
    const QGuiApplication qt(argc, argv);
    nameApplication();
    QGuiApplication::setApplicationDisplayName(QString());
    QGuiApplication::setDesktopFileName(QStringLiteral("lumaro"));
    lumaro::VarnApplicationDelegate::install();

    Options options;
    options.parser.process(qt);
    lumaro::Application application(lumaro::Application::Folders::standard());
    if (!application.show())
        return 1;
    if (const QStringList arguments = options.parser.positionalArguments(); !arguments.isEmpty())
        application.open(arguments.first(), QDir::currentPath());
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    return wantsWindow(argc, argv) ? runInWindow(argc, argv) : runInTerminal(argc, argv);
}
