// The program of the window.

#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/Translations.h"
#include "platform/qt/SingleInstance.h"

#include <QDir>
#include <QGuiApplication>

#include <cstdio>

using lumaro::SingleInstance;

namespace {

/// Shows the window, with what was asked for, until the user closes it.
int run(const lumaro::Folders &folders, SingleInstance &instance,
        const SingleInstance::Request &request)
{
    lumaro::Application application(folders);
    if (!application.show())
        return 1;
    const auto open = [&application](const SingleInstance::Request &asked) {
        lumaro::CommandLine options;
        options.parse(asked.arguments);
        if (const QStringList toOpen = options.filesAndAddresses(); !toOpen.isEmpty())
            application.open(toOpen, asked.workingFolder);
        if (options.wantsFinder())
            application.showFinder();
    };
    open(request);
    const QObject context;
    QObject::connect(&instance, &SingleInstance::requested, &context,
                     [&](const SingleInstance::Request &asked) {
                         application.bringToFront(asked.activationToken);
                         open(asked);
                     });
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    lumaro::Application::prepare();
    const QGuiApplication qt(argc, argv);
    lumaro::nameApplication();
    QGuiApplication::setApplicationDisplayName(QString());
    QGuiApplication::setDesktopFileName(QStringLiteral("lumaro"));
    lumaro::installTranslations();
    lumaro::VarnApplicationDelegate::install();

    lumaro::CommandLine options;
    options.process();

    const auto folders = lumaro::Folders::standard();
    SingleInstance instance(folders.settings);
    const SingleInstance::Request request{.arguments = QCoreApplication::arguments(),
                                          .workingFolder = QDir::currentPath(),
                                          .activationToken = qgetenv("XDG_ACTIVATION_TOKEN")};
    switch (instance.claim(request)) {
    case SingleInstance::Outcome::First:
        return run(folders, instance, request);
    case SingleInstance::Outcome::HandedOver:
        return 0;
    case SingleInstance::Outcome::NoAnswer:
        std::fputs("Lumaro is already running but does not answer.\n", stderr);
        return 1;
    }
    Q_UNREACHABLE();
}
