// The program that users start. It saves streams by itself; for everything else it becomes the
// window's program, whose many libraries a download need not wait for.

#include "app/CommandLine.h"
#include "app/TerminalApplication.h"
#include "app/Translations.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <unistd.h>

namespace {

/// Returns only when that fails; the process's exit status.
int becomeWindow(char *argv[])
{
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::string program = self.parent_path() / "lumaro-window";
    execv(program.c_str(), argv);
    // No other thread runs. NOLINTNEXTLINE(concurrency-mt-unsafe)
    std::fprintf(stderr, "%s cannot be started: %s.\n", program.c_str(), std::strerror(errno));
    return 1;
}

int runInTerminal(int argc, char *argv[])
{
    const QCoreApplication qt(argc, argv);
    lumaro::nameApplication();
    lumaro::installTranslations();
    lumaro::CommandLine options;
    options.process();
    lumaro::TerminalApplication application(lumaro::Folders::standard());
    return application.download(options.downloadAddress(), options.folder(), options.name());
}

} // namespace

int main(int argc, char *argv[])
{
    return lumaro::CommandLine().wantsWindow(argc, argv) ? becomeWindow(argv)
                                                         : runInTerminal(argc, argv);
}
