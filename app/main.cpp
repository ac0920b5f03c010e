#include "app/Application.h"
#include "app/TerminalApplication.h"
#include "platform/qt/SingleInstance.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>

using lumaro::SingleInstance;

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

    const auto folders = lumaro::Application::Folders::standard();
    SingleInstance instance(folders.settings);
    const SingleInstance::Request request{.arguments = options.parser.positionalArguments(),
                                          .workingFolder = QDir::currentPath(),
                                          .activationToken = qgetenv("XDG_ACTIVATION_TOKEN")};
    switch (instance.claim(request)) {
    case SingleInstance::Outcome::First:
        break;
    case SingleInstance::Outcome::HandedOver:
        return 0;
    case SingleInstance::Outcome::NoAnswer:
        std::fputs("Lumaro is already running but does not answer.\n", stderr);
        return 1;
    }

    lumaro::Application application(folders);
    if (!application.show())
        return 1;
    const auto open = [&application](const SingleInstance::Request &asked) {
        if (!asked.arguments.isEmpty())
            application.open(asked.arguments.first(), asked.workingFolder);
    };
    open(request);
    QObject::connect(&instance, &SingleInstance::requested, &instance,
                     [&](const SingleInstance::Request &asked) {
                         application.bringToFront(asked.activationToken);
                         open(asked);
                     });
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    return wantsWindow(argc, argv) ? runInWindow(argc, argv) : runInTerminal(argc, argv);
}
