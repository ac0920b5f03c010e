#pragma once

#include <QCommandLineParser>

#include <optional>

namespace lumaro {

/// What the command line may say, to the program that starts as to the window's.
class CommandLine
{
public:
    CommandLine();

    /// Reads the application's arguments, answers --help and --version itself, and ends the process
    /// over what it does not know or what contradicts itself.
    void process();
    /// Reads what another start was given; what this does not know does not matter.
    void parse(const QStringList &arguments) { m_parser.parse(arguments); }
    /// True unless something is asked for that needs no display. Needs no application object.
    bool wantsWindow(int argc, char *argv[]);

    QString downloadAddress() const { return m_parser.value(m_download); }
    /// Where a download shall go, and its name, if told.
    std::optional<QString> folder() const { return optionalValue(m_to); }
    std::optional<QString> name() const { return optionalValue(m_name); }
    bool wantsFinder() const { return m_parser.isSet(m_finder); }
    QStringList filesAndAddresses() const { return m_parser.positionalArguments(); }

private:
    /// An English sentence; empty for none.
    QString contradiction() const;
    std::optional<QString> optionalValue(const QCommandLineOption &option) const;

    QCommandLineOption m_finder;
    QCommandLineOption m_download;
    QCommandLineOption m_to;
    QCommandLineOption m_name;
    QCommandLineParser m_parser;
};

/// Gives the application object its name and version.
void nameApplication();

} // namespace lumaro
