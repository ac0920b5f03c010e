#include "app/Application.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>

int main(int argc, char *argv[])
{
    lumaro::Application::prepare();
    const QGuiApplication qt(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("lumaro"));
    QGuiApplication::setApplicationDisplayName(QString());
    QGuiApplication::setDesktopFileName(QStringLiteral("lumaro"));
    QGuiApplication::setApplicationVersion(QStringLiteral(LUMARO_VERSION));
    lumaro::VarnApplicationDelegate::install();

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Plays files, streams and IPTV playlists."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("file|address"),
                                 QStringLiteral("What to open: a media file, an M3U playlist, or "
                                                "an http or https address."),
                                 QStringLiteral("[file|address]"));
    parser.process(qt);

    lumaro::Application application(lumaro::Application::Folders::standard());
    if (!application.show())
        return 1;
    if (const QStringList arguments = parser.positionalArguments(); !arguments.isEmpty())
        application.open(arguments.first(), QDir::currentPath());
    return QGuiApplication::exec();
}
